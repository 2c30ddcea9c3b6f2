#include "common/configuration/KobConfigurationInfo.h"

#include <ostream>

namespace Norvik::Common {

namespace {

// Counts and lengths come before what they count, so that no content can look like a separator.

std::string TextOf(const std::vector<std::string>& texts) {
  std::string result = std::to_string(texts.size()) + "[";
  for (const auto& text : texts) result += std::to_string(text.size()) + ":" + text + ",";
  return result + "]";
}

std::string TextOf(const boost::optional<ScheduleInfo>& schedule) {
  if (!schedule) return "none";
  return "every " + std::to_string(schedule->periodSeconds) + " from " +
         std::to_string(schedule->next);
}

}  // namespace

std::ostream& operator<<(std::ostream& stream, const KobConfigurationInfo& info) {
  std::string text = "excludedFiles=" + TextOf(info.excludedFiles);
  text += ";excludedPaths=" + TextOf(info.excludedPaths);
  text += ";additionalExtensions=" + TextOf(info.additionalExtensions);
  text += ";includedExtensions=" + TextOf(info.includedExtensions);
  text += ";inventorySchedule=" + TextOf(info.inventorySchedule);
  text += ";fileInventoryIncrementalSchedule=" + TextOf(info.fileInventoryIncrementalSchedule);
  text += ";fileInventorySchedule=" + TextOf(info.fileInventorySchedule);
  text += ";pendingTasksSchedule=" + TextOf(info.pendingTasksSchedule);
  text += ";inventoryOnLogon=";
  text += info.inventoryOnLogon ? "true" : "false";
  return stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

}  // namespace Norvik::Common
