#pragma once

#include <map>
#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"
#include "machine/SystemFiles.h"

namespace Norvik::Machine {

/// A disk, and the numbers of the block devices on it: the disk itself, its partitions, and the
/// devices layered on them.
struct BlockDisk {
  Common::PhysicalDiskInfo info;
  std::vector<std::string> deviceNumbers;  ///< "8:1"
};

/// The disks below /sys/block with their partitions, without memory disks, loop devices, optical
/// drives and devices without a medium. Layered devices belong to their disks.
std::vector<BlockDisk> ReadBlockDisks(const SystemFiles& files);

/// The properties of a block device in a file of /run/udev/data: the entries of its "E:" lines.
std::map<std::string, std::string> ParseDeviceRecord(const std::string& text);

/// How a disk is attached, from the path of its device below /sys/devices; empty if the path does
/// not show it.
std::string BusTypeOf(const std::string& devicePath);

}  // namespace Norvik::Machine
