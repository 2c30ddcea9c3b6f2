#include "host/configuration/ConfigurationWarnings.h"

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>

#include "common/files/ScanRules.h"
#include "common/files/SealingKeys.h"
#include "common/files/TextFile.h"
#include "host/configuration/UsualExclusions.h"

namespace Norvik::Host {

namespace {

using Common::ReadTextFile;
namespace fs = boost::filesystem;
using Common::ScanRules;
using Warnings = std::vector<ConfigurationWarning>;
using TextList = std::vector<std::string>;

void CheckFolders(const TextList& folders, Warnings& warnings) {
  const auto warn = [&](const std::string& folder, const char* text) {
    warnings.push_back({"excludedPaths", folder, text});
  };
  boost::system::error_code ignored;
  for (const auto& folder : folders) {
    if (folder.front() != '/') {
      warn(folder, "is not a full path, so it excludes nothing");
    } else if (folder.size() > 1 && folder.back() == '/') {
      warn(folder, "has a slash at its end, so it excludes nothing");
    } else if (!fs::exists(folder, ignored)) {
      warn(folder, "does not exist on this machine");
    }
  }
  for (const auto& [folder, reason] : UsualExclusions()) {
    const bool excluded = std::find(folders.begin(), folders.end(), folder) != folders.end();
    if (excluded || !fs::exists(folder, ignored)) continue;
    warnings.push_back({"excludedPaths", "", std::string(folder) + " is missing: " + reason});
  }
}

void CheckNames(const TextList& names, Warnings& warnings) {
  for (const auto& name : names) {
    if (name.find('/') == std::string::npos) continue;
    warnings.push_back({"excludedFiles", name, "is a path, but names are compared without one"});
  }
}

void CheckExtensions(const char* key, const TextList& extensions, Warnings& warnings) {
  for (const auto& extension : extensions) {
    const auto complete = ScanRules::CompleteExtensions({extension});
    if (complete.count(extension) > 0) continue;
    warnings.push_back(
        {key, extension, "is in mixed case: only files in all upper or all lower case will match"});
  }
}

void CheckAdditional(const TextList& extensions, Warnings& warnings) {
  const auto counting = ScanRules::AdditionalExtensions(extensions);
  for (const auto& extension : extensions) {
    if (counting.count(extension) > 0) continue;
    warnings.push_back({"additionalExtensions", extension, "has no effect here"});
  }
}

/// Schedules are meant for hours and days, so a short one is likely a mistake.
void CheckSchedules(const Common::KobConfigurationInfo& kob, Warnings& warnings) {
  const std::pair<const char*, const boost::optional<Common::ScheduleInfo>&> schedules[] = {
      {"inventorySchedule", kob.inventorySchedule},
      {"fileInventoryIncrementalSchedule", kob.fileInventoryIncrementalSchedule},
      {"fileInventorySchedule", kob.fileInventorySchedule},
      {"pendingTasksSchedule", kob.pendingTasksSchedule}};
  for (const auto& [key, schedule] : schedules) {
    if (!schedule || schedule->periodSeconds == 0 || schedule->periodSeconds >= 60) continue;
    warnings.push_back({std::string(key) + ".periodSeconds",
                        std::to_string(schedule->periodSeconds), "is less than a minute"});
  }
}

void CheckServer(const Common::CommunicationsInfo& server, Warnings& warnings) {
  const std::string& caFile = server.certificateFile;
  if (server.address.empty() && !caFile.empty()) {
    warnings.push_back({"server.address", "", "is missing, so there is no server"});
  }
  if (caFile.empty()) return;
  try {
    if (ReadTextFile(caFile).find("-----BEGIN CERTIFICATE-----") != std::string::npos) return;
    warnings.push_back({"server.caFile", caFile, "holds no certificate in PEM form"});
  } catch (const std::runtime_error&) {
    warnings.push_back({"server.caFile", caFile, "cannot be read"});
  }
}

}  // namespace

bool WantsNoFile(const Common::KobConfigurationInfo& configuration) {
  return ScanRules(configuration).Configuration().at(Common::IncludeExtension).empty();
}

std::string DeliveryProblem(const Common::CommunicationsInfo& server, const fs::path& keyFolder) {
  return server.address.empty() ? "" : Common::SealingKeys(keyFolder).ServerKeyProblem();
}

Warnings WarningsOf(const Common::AgentConfigurationInfo& configuration,
                    const fs::path& keyFolder) {
  Warnings warnings;
  const Common::KobConfigurationInfo& kob = configuration.kob.value();
  CheckFolders(kob.excludedPaths, warnings);
  CheckNames(kob.excludedFiles, warnings);
  CheckExtensions("includedExtensions", kob.includedExtensions, warnings);
  CheckExtensions("additionalExtensions", kob.additionalExtensions, warnings);
  CheckAdditional(kob.additionalExtensions, warnings);
  if (WantsNoFile(kob)) warnings.push_back({"includedExtensions", "", NO_FILE_WANTED});
  CheckSchedules(kob, warnings);
  CheckServer(configuration.communications, warnings);
  const std::string problem = DeliveryProblem(configuration.communications, keyFolder);
  if (!problem.empty()) {
    warnings.push_back({"server", "", "gets no document: " + problem});
  }
  return warnings;
}

}  // namespace Norvik::Host
