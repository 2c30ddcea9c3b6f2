#pragma once

#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"

namespace Norvik::Machine {

/// The physical disks in the output of `diskutil info -all`, without disk images, with their
/// partitions and the volumes mounted from them, including those in containers.
std::vector<Common::PhysicalDiskInfo> ParseDiskutilInfo(const std::string& text);

}  // namespace Norvik::Machine
