#pragma once

#include <boost/optional.hpp>
#include <iosfwd>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

/// Configuration of the inventory and remote-administration module.
struct KobConfigurationInfo {
  // File inventory.
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

/// Writes every field, so that two records give the same text exactly when they are equal. A change
/// of configuration is told by comparing such texts; none is ever parsed.
NORVIK_COMMON_API std::ostream& operator<<(std::ostream& stream, const KobConfigurationInfo& info);

}  // namespace Norvik::Common
