#include "module/RUD/RudInventoryV2.h"

namespace Norvik::KOB::V2 {

std::set<std::string> RudInventory::GetDevices(
    const std::vector<Common::PhysicalDiskInfo>& /*disks*/) {
  // Every volume is mounted below the one root.
  return {"/"};
}

}  // namespace Norvik::KOB::V2
