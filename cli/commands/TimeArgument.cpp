#include "cli/commands/TimeArgument.h"

#include <map>
#include <regex>

#include "common/text/Dates.h"
#include "common/text/Text.h"
#include "host/HostError.h"

namespace Norvik::Cli {

namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

constexpr char FORMAT[] = "%Y-%m-%d %H:%M:%S";

/// Of "+02:00" or "-0330"; 0 for "Z".
seconds OffsetOf(const std::string& zone) {
  if (zone == "Z") return seconds(0);
  const long minutes = std::stol(zone.substr(1, 2)) * 60 + std::stol(zone.substr(zone.size() - 2));
  return seconds((zone.front() == '-' ? -60 : 60) * minutes);
}

/// The zero time point for another text.
system_clock::time_point DateOf(const std::string& text) {
  static const std::regex FORM(
      "([0-9]{4}-[0-9]{2}-[0-9]{2})(?:[T ]([0-9]{2}:[0-9]{2})(:[0-9]{2})?"
      "(Z|[+-][0-9]{2}:?[0-9]{2})?)?");
  std::smatch parts;
  if (!std::regex_match(text, parts, FORM)) return {};
  const auto orElse = [&](std::size_t part, const char* otherwise) {
    return parts[part].matched ? parts[part].str() : otherwise;
  };
  const std::string date = parts[1].str() + " " + orElse(2, "00:00") + orElse(3, ":00");
  if (!parts[4].matched) return Common::StringToTimePoint(date, FORMAT);
  const auto time = Common::UTCStringToTimePoint(date, FORMAT);
  return time == system_clock::time_point() ? time : time - OffsetOf(parts[4]);
}

}  // namespace

system_clock::time_point TimeOfArgument(const std::string& option, const std::string& text,
                                        system_clock::time_point now) {
  static const std::map<char, long> UNITS = {
      {'s', 1}, {'m', 60}, {'h', 3600}, {'d', 86400}, {'w', 604800}};
  static const std::regex PERIOD("[0-9]{1,6}[smhdw]");
  if (std::regex_match(text, PERIOD)) return now - seconds(std::stol(text) * UNITS.at(text.back()));
  const auto date = DateOf(text);
  if (date != system_clock::time_point()) return date;
  throw Host::UsageError(option + " wants a date or a time such as 2026-01-31 or " +
                         "2026-01-31T12:00:00Z, or a period such as 7d or 12h, not " + text);
}

}  // namespace Norvik::Cli
