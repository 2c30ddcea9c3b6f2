#include "module/RUD/RudInventoryV2.h"

#include "common/files/ScanRules.h"

namespace Norvik::KOB::V2 {

std::set<std::string> RudInventory::GetDevices(
    const std::vector<Common::PhysicalDiskInfo>& /*disks*/) {
  return Common::ScanRules::Roots();
}

}  // namespace Norvik::KOB::V2
