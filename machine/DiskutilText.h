#pragma once

#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"

namespace Norvik::Machine {

/// The physical disks, without disk images and optical discs, with their partitions and the volumes
/// mounted from them, including those of APFS containers and CoreStorage. A volume of a Fusion
/// Drive is listed with each of its disks.
/// @param info output of `diskutil info -all`
/// @param list output of `diskutil list`, which has the disks below each container
std::vector<Common::PhysicalDiskInfo> ParseDiskutil(const std::string& info,
                                                    const std::string& list);

}  // namespace Norvik::Machine
