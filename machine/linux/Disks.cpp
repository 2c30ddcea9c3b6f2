#include <sys/statvfs.h>

#include <algorithm>

#include "machine/MountText.h"
#include "machine/linux/BlockDevices.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

/// Reads the sizes of the volume at a mount point. Both stay 0 if the system does not report them.
void ReadSizes(const std::string& mountPoint, LogicalDiskInfo& volume) {
  struct statvfs space {};
  if (::statvfs(mountPoint.c_str(), &space) != 0) return;
  const std::uint64_t block = space.f_frsize;
  volume.sizeBytes = block * space.f_blocks;
  volume.freeBytes = WholeGibibytes(block * space.f_bavail);
}

/// The volume takes its name from its partition, if it has one.
LogicalDiskInfo LogicalDiskOf(const Mount& mount, const BlockDisk& disk) {
  LogicalDiskInfo volume;
  volume.mountPoint = mount.mountPoint;
  volume.device = mount.source;
  volume.fileSystemType = mount.fileSystem;
  volume.fileSystemName = mount.fileSystem;
  ReadSizes(mount.mountPoint, volume);
  for (const auto& partition : disk.info.partitions) {
    if (partition.device == mount.source) volume.volumeName = partition.label;
  }
  return volume;
}

/// A file system on several devices has a device number of its own; its source identifies the disk.
bool StandsOn(const Mount& mount, const BlockDisk& disk) {
  const auto& numbers = disk.deviceNumbers;
  if (std::find(numbers.begin(), numbers.end(), mount.deviceNumber) != numbers.end()) return true;
  if (mount.source == "/dev/" + disk.info.pnpDeviceId) return true;
  const auto& partitions = disk.info.partitions;
  return std::any_of(partitions.begin(), partitions.end(),
                     [&](const auto& partition) { return partition.device == mount.source; });
}

void FillFileSystemType(const Mount& mount, PhysicalDiskInfo& info) {
  for (auto& partition : info.partitions) {
    if (partition.device == mount.source && partition.fileSystemType.empty()) {
      partition.fileSystemType = mount.fileSystem;
    }
  }
}

}  // namespace

std::vector<PhysicalDiskInfo> GatherDisks(const SystemFiles& files) {
  const auto volumes = VolumesOf(ParseMountInfo(files.Bytes("/proc/self/mountinfo")));
  std::vector<PhysicalDiskInfo> disks;
  for (auto& disk : ReadBlockDisks(files)) {
    for (const auto& mount : volumes) {
      if (!StandsOn(mount, disk)) continue;
      disk.info.logicalDisks.push_back(LogicalDiskOf(mount, disk));
      FillFileSystemType(mount, disk.info);
    }
    disks.push_back(std::move(disk.info));
  }
  return disks;
}

}  // namespace Norvik::Machine
