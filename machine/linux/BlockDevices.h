#pragma once

#include <map>
#include <string>
#include <vector>

#include "common/records/PhysicalDiskInfo.h"
#include "machine/SystemFiles.h"

namespace Norvik::Machine {

/// A disk and the numbers of the block devices that stand on it: itself, its partitions, and what
/// is layered on top of them.
struct BlockDisk {
  Common::PhysicalDiskInfo info;
  std::vector<std::string> deviceNumbers;  ///< as in "8:1"
};

/// The disks below /sys/block with their partitions. Memory disks, loops, optical drives and
/// devices without a medium are none; layered devices belong to their disks.
std::vector<BlockDisk> ReadBlockDisks(const SystemFiles& files);

/// What the device manager knows of a block device: the keys of its "E:" lines. Takes the text of a
/// file of /run/udev/data.
std::map<std::string, std::string> ParseDeviceRecord(const std::string& text);

/// How a disk is attached, by the path of its device below /sys/devices; empty if that tells not.
std::string BusTypeOf(const std::string& devicePath);

}  // namespace Norvik::Machine
