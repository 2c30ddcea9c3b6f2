#include <sys/stat.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>

#include "common/files/SealingKeys.h"
#include "host/HostError.h"
#include "host/configuration/ConfigurationWarnings.h"
#include "host/configuration/ManagedPreferences.h"
#include "host/data/DataFolder.h"
#include "host/health/Checks.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

/// The finding of a check that needs the configuration, without one.
Finding NoConfiguration(const Examined& examined) {
  if (examined.Configuration().isHidden) {
    return UnreadableFinding(examined.File(CONFIGURATION_FILE).string());
  }
  return {Outcome::UNKNOWN, "the configuration cannot be used", "see the check configuration"};
}

}  // namespace

Finding FindConfiguration(const Examined& examined) {
  const auto& configuration = examined.Configuration();
  if (configuration.isHidden) return NoConfiguration(examined);
  if (!configuration.value) return {Outcome::ERROR, configuration.problem};
  const auto& sources = configuration.value->sources;
  const auto defaults = std::count_if(sources.begin(), sources.end(),
                                      [](const auto& it) { return it.second == FROM_DEFAULT; });
  const auto set = static_cast<std::ptrdiff_t>(sources.size()) - defaults;
  if (set == 0)
    return {Outcome::INFORMATION, "nothing is configured",
            "store a configuration with norvik-agent configure FILE"};
  return {Outcome::OK, std::to_string(set) + " keys are set"};
}

Finding FindConfigurationWarnings(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  if (!configuration) return NoConfiguration(examined);
  std::string text;
  for (const auto& warning : WarningsOf(configuration->values, examined.File(KEY_FOLDER))) {
    text += (text.empty() ? "" : "; ") + warning.key + ": " + warning.value +
            (warning.value.empty() ? "" : " ") + warning.text;
  }
  if (text.empty()) return {Outcome::OK, "nothing in it will surprise"};
  return {Outcome::WARNING, text};
}

Finding FindManagedPreferences(const Examined& /*examined*/) {
  try {
    const nlohmann::json managed = ReadManagedPreferences();
    if (managed.empty()) return {Outcome::OK, "there are none"};
    MakeConfiguration("{}");
    std::string keys;
    for (const auto& item : managed.items()) keys += (keys.empty() ? "" : ", ") + item.key();
    return {Outcome::OK, "they set " + keys};
  } catch (const std::runtime_error& error) {
    return {Outcome::ERROR, ReasonOf(error)};
  }
}

Finding FindSchedules(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  if (!configuration) return NoConfiguration(examined);
  const Common::KobConfigurationInfo& kob = configuration->values.kob.value();
  const auto repeats = [](const boost::optional<Common::ScheduleInfo>& schedule) {
    return schedule && schedule->periodSeconds > 0;
  };
  if (repeats(kob.inventorySchedule)) {
    const std::chrono::seconds period(kob.inventorySchedule->periodSeconds);
    return {Outcome::OK, "an inventory every " + PeriodText(period)};
  }
  if (repeats(kob.pendingTasksSchedule)) {
    return {Outcome::INFORMATION, "only the server starts inventories"};
  }
  return {Outcome::WARNING, "nothing starts inventories regularly"};
}

Finding FindOwnKeys(const Examined& examined) {
  const fs::path folder = examined.File(KEY_FOLDER);
  const fs::path privateKey = folder / "agent.key";
  const fs::path publicKey = folder / "agent.pub";
  const Presence presence = ReadablePresenceOf(privateKey);
  if (presence == Presence::HIDDEN) return UnreadableFinding(privateKey.string());
  if (presence == Presence::MISSING) {
    if (PresenceOf(publicKey) == Presence::MISSING) {
      return {Outcome::OK, "none yet: documents without a server's key make them"};
    }
    return {Outcome::WARNING, privateKey.string() + " is missing, so nobody can open documents " +
                                  "that are sealed to " + publicKey.filename().string()};
  }
  for (const fs::path& path : {folder, privateKey}) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0 && (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
      return {Outcome::ERROR, "others may read " + path.string()};
    }
  }
  try {
    const Common::SealingKeys keys(folder);
    Common::PublicKey half;
    Common::PrivateKey whole;
    keys.ForOpening(half, whole);
    // Without both conditions this would make keys or return that of the server.
    const bool isSealedToOwn = fs::exists(publicKey) && !fs::exists(folder / "server.pub");
    if (isSealedToOwn && keys.ForSealing() != half) {
      return {Outcome::ERROR, publicKey.string() + " does not belong to " + privateKey.string()};
    }
  } catch (const std::runtime_error& error) {
    return {Outcome::ERROR, ReasonOf(error)};
  }
  return {Outcome::OK, "a pair in " + folder.string()};
}

Finding FindServerKey(const Examined& examined) {
  const auto& configuration = examined.Configuration().value;
  if (!configuration) return NoConfiguration(examined);
  const auto& server = configuration->values.communications;
  if (server.address.empty()) return {Outcome::OK, "not needed: no server is configured"};
  const fs::path file = examined.File(KEY_FOLDER) / "server.pub";
  if (ReadablePresenceOf(file) == Presence::HIDDEN) return UnreadableFinding(file.string());
  const std::string problem = DeliveryProblem(server, examined.File(KEY_FOLDER));
  if (!problem.empty()) return {Outcome::ERROR, "no document is delivered: " + problem};
  return {Outcome::OK, file.string()};
}

}  // namespace Norvik::Host
