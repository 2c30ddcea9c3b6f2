#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Norvik::Machine {

/// A mounted file system.
struct Mount {
  std::string deviceNumber;  ///< as in "8:1"
  std::string root;          ///< the part of the file system that is mounted
  std::string mountPoint;
  std::string fileSystem;
  std::string source;  ///< the device, for file systems that have one
};

/// The mounts that the text of /proc/self/mountinfo tells, in its order, without those that a later
/// one hides at the same place.
std::vector<Mount> ParseMountInfo(const std::string& text);

/// The volumes among them: one for each part of a file system, at its shortest place. What is
/// mounted from inside a file system, as containers do with single files, is no volume, unless the
/// file system has subvolumes.
std::vector<Mount> VolumesOf(const std::vector<Mount>& mounts);

/// Bytes cut to whole GiB: a little more or less is no change of the machine.
std::uint64_t WholeGibibytes(std::uint64_t bytes);

}  // namespace Norvik::Machine
