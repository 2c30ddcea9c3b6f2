#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Machine {

/// A mounted file system.
struct Mount {
  std::string deviceNumber;  ///< "8:1"
  std::string root;          ///< the part of the file system that is mounted
  std::string mountPoint;
  std::string fileSystem;
  std::string source;  ///< the device, for file systems that have one
};

/// The mounts in the text of /proc/self/mountinfo, in its order, without those that a later mount
/// at the same place hides.
std::vector<Mount> ParseMountInfo(const std::string& text);

/// The mounts that are volumes: each file system once, at its shortest mount point. A mount of a
/// folder or a file inside a file system, as containers use them, is not a volume, unless the file
/// system has subvolumes.
std::vector<Mount> VolumesOf(const std::vector<Mount>& mounts);

/// Rounds bytes down to whole GiB, so that small differences do not count as a change of the
/// machine.
std::uint64_t WholeGibibytes(std::uint64_t bytes);

}  // namespace Norvik::Machine
