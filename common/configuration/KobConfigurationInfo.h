#pragma once

#include <boost/optional.hpp>
#include <iosfwd>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

/// The configuration of the inventory and remote-administration module. An inventory without a
/// schedule runs on request only.
struct KobConfigurationInfo {
  // Of the file inventory; what the lists mean is said at `ScanRules`.
  std::vector<std::string> excludedFiles;
  std::vector<std::string> excludedPaths;
  std::vector<std::string> additionalExtensions;
  std::vector<std::string> includedExtensions;

  boost::optional<ScheduleInfo> inventorySchedule;
  boost::optional<ScheduleInfo> fileInventoryIncrementalSchedule;
  boost::optional<ScheduleInfo> fileInventorySchedule;
  boost::optional<ScheduleInfo> pendingTasksSchedule;
  bool inventoryOnLogon = false;
};

/// Writes every field, so that two configurations give the same text exactly if they are equal. A
/// change is detected by comparing the text with the stored one of the last change; no text is
/// parsed.
NORVIK_COMMON_API std::ostream& operator<<(std::ostream& stream, const KobConfigurationInfo& info);

}  // namespace Norvik::Common
