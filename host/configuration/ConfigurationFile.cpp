#include "host/configuration/ConfigurationFile.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <vector>

#include "common/files/TextFile.h"
#include "host/configuration/ManagedPreferences.h"
#include "host/configuration/UsualExclusions.h"
#include "json/BoundedReader.h"
#include "platform/MachinePath.h"

namespace Norvik::Host {

namespace {

using namespace Common;
using Json = nlohmann::json;

/// A value of the configuration, with its full key.
struct Place {
  const Json& value;
  std::string key;

  [[noreturn]] void Refuse(const std::string& wanted) const {
    throw ConfigurationError((key.empty() ? "the configuration" : key) + " wants " + wanted);
  }
  Place Child(const std::string& name, const Json& child) const {
    return {child, key.empty() ? name : key + "." + name};
  }
};

using Reader = std::function<void(const Place&)>;
using Readers = std::map<std::string, Reader>;

constexpr std::int64_t DAY = 86400;

/// Reads an object with the reader of each key. Refuses any other key.
void ReadObject(const Place& place, const Readers& readers) {
  if (!place.value.is_object()) place.Refuse("an object");
  for (const auto& item : place.value.items()) {
    const Place child = place.Child(item.key(), item.value());
    const auto found = readers.find(item.key());
    if (found != readers.end()) {
      found->second(child);
      continue;
    }
    std::string known;
    for (const auto& reader : readers) known += (known.empty() ? "" : ", ") + reader.first;
    throw ConfigurationError("unknown key " + child.key + "; known here are " + known);
  }
}

template <class Number>
Reader WholeNumber(Number& target, std::int64_t lowest, std::int64_t highest) {
  return [&target, lowest, highest](const Place& place) {
    const std::string wanted =
        "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest);
    if (!place.value.is_number_integer()) place.Refuse(wanted);
    // A number beyond the signed range is parsed as unsigned and is too large for every key.
    const bool fits = !place.value.is_number_unsigned() ||
                      place.value.get<std::uint64_t>() <= static_cast<std::uint64_t>(highest);
    const std::int64_t number = fits ? place.value.get<std::int64_t>() : highest;
    if (!fits || number < lowest || number > highest) place.Refuse(wanted);
    target = static_cast<Number>(number);
  };
}

Reader Flag(bool& target) {
  return [&target](const Place& place) {
    if (!place.value.is_boolean()) place.Refuse("true or false");
    target = place.value.get<bool>();
  };
}

Reader Text(std::string& target) {
  return [&target](const Place& place) {
    static constexpr char WANTED[] = "a text that is not empty";
    if (!place.value.is_string()) place.Refuse(WANTED);
    target = place.value.get<std::string>();
    if (target.empty() || target.find('\0') != std::string::npos) place.Refuse(WANTED);
  };
}

/// The host part of a URL, without anything around it.
Reader HostName(std::string& target) {
  return [&target](const Place& place) {
    Text(target)(place);
    const bool isOdd = std::any_of(target.begin(), target.end(), [](unsigned char c) {
      return c <= ' ' || c >= 0x7F || std::strchr("/\\@?#%\"<>", c);
    });
    if (isOdd) place.Refuse("a host name or address, without https:// and without a path");
  };
}

Reader FullPath(std::string& target) {
  return [&target](const Place& place) {
    Text(target)(place);
    if (target.front() != '/') place.Refuse("a full path");
  };
}

Reader TextArray(std::vector<std::string>& target) {
  return [&target](const Place& place) {
    if (!place.value.is_array()) place.Refuse("a list of texts");
    target.clear();
    for (const Json& element : place.value) {
      std::string text;
      Text(text)({element, place.key + "[" + std::to_string(target.size()) + "]"});
      target.push_back(std::move(text));
    }
  };
}

Reader ScheduleObject(boost::optional<ScheduleInfo>& target) {
  return [&target](const Place& place) {
    constexpr std::int64_t TEN_YEARS = 315'360'000;
    constexpr std::int64_t LATEST = 4'000'000'000;
    ScheduleInfo schedule;
    ReadObject(place, {{"periodSeconds", WholeNumber(schedule.periodSeconds, 0, TEN_YEARS)},
                       {"next", WholeNumber(schedule.next, 0, LATEST)}});
    target = schedule;
  };
}

Reader Server(CommunicationsInfo& target) {
  return [&target](const Place& place) {
    constexpr std::int64_t LONGEST_TIMEOUT = 3600;
    ReadObject(
        place,
        {{"address", HostName(target.address)},
         {"port", WholeNumber(target.port, 1, 65535)},
         {"caFile", FullPath(target.certificateFile)},
         {"connectTimeoutSeconds", WholeNumber(target.connectTimeoutSeconds, 1, LONGEST_TIMEOUT)},
         {"requestTimeoutSeconds", WholeNumber(target.requestTimeoutSeconds, 1, LONGEST_TIMEOUT)}});
  };
}

Reader Survey(boost::optional<SurveyInfo>& target) {
  return [&target](const Place& place) {
    SurveyInfo survey;
    ReadObject(place, {{"macos", Flag(survey.onMacOs)},
                       {"windows", Flag(survey.onWindows)},
                       {"linux", Flag(survey.onLinux)}});
    target = survey;
  };
}

Reader Enrolment(std::string& secret) {
  return [&secret](const Place& place) { ReadObject(place, {{"secret", Text(secret)}}); };
}

Reader Seconds(std::chrono::seconds& target, std::int64_t longest) {
  return [&target, longest](const Place& place) {
    std::int64_t count = 0;
    WholeNumber(count, 0, longest)(place);
    target = std::chrono::seconds(count);
  };
}

Reader History(HistoryLimits& target) {
  return [&target](const Place& place) {
    constexpr std::int64_t TEN_YEARS = 3650;
    constexpr std::int64_t MOST_MEGABYTES = 1'000'000;
    std::uintmax_t megabytes = target.bytes / MEGABYTE;
    ReadObject(place, {{"days", WholeNumber(target.days, 0, TEN_YEARS)},
                       {"megabytes", WholeNumber(megabytes, 1, MOST_MEGABYTES)}});
    target.bytes = megabytes * MEGABYTE;
  };
}

Reader Spread(ScheduleSpread& target) {
  return [&target](const Place& place) {
    ReadObject(place, {{"percent", WholeNumber(target.percent, 0, 100)},
                       {"mostSeconds", Seconds(target.most, DAY)}});
  };
}

Readers ReadersOf(EffectiveConfiguration& configuration) {
  AgentConfigurationInfo& target = configuration.values;
  KobConfigurationInfo& kob = *target.kob;
  return {
      {"toolTimeLimitSeconds", Seconds(configuration.toolTimeLimit, DAY)},
      {"profileId", WholeNumber(target.profileId, 0, std::numeric_limits<std::uint32_t>::max())},
      {"server", Server(target.communications)},
      {"enrolment", Enrolment(configuration.enrolmentSecret)},
      {"scheduleSpread", Spread(configuration.spread)},
      {"excludedFiles", TextArray(kob.excludedFiles)},
      {"excludedPaths", TextArray(kob.excludedPaths)},
      {"additionalExtensions", TextArray(kob.additionalExtensions)},
      {"includedExtensions", TextArray(kob.includedExtensions)},
      {"inventorySchedule", ScheduleObject(kob.inventorySchedule)},
      {"fileInventoryIncrementalSchedule", ScheduleObject(kob.fileInventoryIncrementalSchedule)},
      {"fileInventorySchedule", ScheduleObject(kob.fileInventorySchedule)},
      {"pendingTasksSchedule", ScheduleObject(kob.pendingTasksSchedule)},
      {"history", History(configuration.history)},
      {"inventoryOnLogon", Flag(kob.inventoryOnLogon)},
      {"survey", Survey(target.survey)}};
}

/// Refuses a key that an object contains twice: the parser alone would use the last one.
Json ParseConfigurationJson(const std::string& text) {
  std::vector<std::set<std::string>> open;
  const auto watch = [&](int /*depth*/, Json::parse_event_t event, Json& parsed) {
    if (event == Json::parse_event_t::object_start) open.emplace_back();
    if (event == Json::parse_event_t::object_end) open.pop_back();
    if (event == Json::parse_event_t::key &&
        !open.back().insert(parsed.get<std::string>()).second) {
      throw ConfigurationError("the key " + parsed.get<std::string>() + " occurs twice");
    }
    return true;
  };
  try {
    // Without a limit of depth: this parser does not recurse, and no reader accepts deep nesting.
    return json::ReadBounded<Json>(text, text.size(), watch);
  } catch (const json::ReadError& error) {
    if (error.reason == json::ReadError::Reason::NotJson) {
      throw ConfigurationError("the configuration is no JSON from byte " +
                               std::to_string(error.byte));
    }
    throw ConfigurationError("the configuration holds a number that is too large");
  }
}

/// Without the sources.
EffectiveConfiguration ValuesOf(const Json& configuration) {
  EffectiveConfiguration result;
  result.values = DefaultConfiguration();
  ReadObject({configuration, ""}, ReadersOf(result));
  return result;
}

/// The managed preferences, each with a valid value.
Json ReadValidManagedPreferences() {
  Json managed = ReadManagedPreferences();
  try {
    ValuesOf(managed);
  } catch (const ConfigurationError& error) {
    throw std::runtime_error("managed preferences " + Platform::MachinePath(MANAGED_PREFERENCES) +
                             ": " + error.what());
  }
  return managed;
}

}  // namespace

AgentConfigurationInfo DefaultConfiguration() {
  AgentConfigurationInfo configuration;
  configuration.kob.emplace();
  for (const auto& [folder, reason] : UsualExclusions()) {
    configuration.kob->excludedPaths.emplace_back(folder);
  }
  configuration.communications.port = 443;
  return configuration;
}

AgentConfigurationInfo ParseConfiguration(const std::string& text) {
  return ValuesOf(ParseConfigurationJson(text)).values;
}

AgentConfigurationInfo ForModule(const EffectiveConfiguration& configuration,
                                 const std::string& identifier) {
  AgentConfigurationInfo result = configuration.values;
  SpreadSchedules(*result.kob, configuration.spread, identifier);
  return result;
}

EffectiveConfiguration MakeConfiguration(const std::string& text) {
  Json configuration = ParseConfigurationJson(text);
  std::map<std::string, std::string> sources;
  EffectiveConfiguration ofText = ValuesOf(configuration);
  for (const auto& known : ReadersOf(ofText)) {
    sources[known.first] = configuration.contains(known.first) ? FROM_FILE : FROM_DEFAULT;
  }
  const Json managed = ReadValidManagedPreferences();
  for (const auto& item : managed.items()) sources[item.key()] = FROM_MANAGED;
  configuration.update(managed);
  EffectiveConfiguration result = ValuesOf(configuration);
  result.sources = std::move(sources);
  return result;
}

ConfigurationFile ReadConfigurationFile(const boost::filesystem::path& file) {
  ConfigurationFile result;
  try {
    result.text = ReadTextFile(file);
  } catch (const std::runtime_error& error) {
    throw UsageError(std::string("cannot read the configuration file ") + error.what());
  }
  try {
    result.configuration = MakeConfiguration(result.text);
  } catch (const ConfigurationError& error) {
    throw ConfigurationError(file.string() + ": " + error.what());
  }
  return result;
}

EffectiveConfiguration ReadConfiguration(const boost::filesystem::path& given,
                                         const boost::filesystem::path& stored) {
  if (!given.empty()) return ReadConfigurationFile(given).configuration;
  if (!boost::filesystem::exists(stored)) return MakeConfiguration("{}");
  try {
    return ReadConfigurationFile(stored).configuration;
  } catch (const UsageError& error) {
    throw std::runtime_error(error.what());
  }
}

}  // namespace Norvik::Host
