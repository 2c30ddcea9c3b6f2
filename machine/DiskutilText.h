#pragma once

#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"

namespace Norvik::Machine {

/// The physical disks in the text of `diskutil info -all`, with their partitions and the volumes
/// that are mounted from them, those in containers too. Disk images are none.
std::vector<Common::PhysicalDiskInfo> ParseDiskutilInfo(const std::string& text);

}  // namespace Norvik::Machine
