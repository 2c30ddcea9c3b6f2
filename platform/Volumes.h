#pragma once

#include <optional>
#include <string>

// What the calls for file systems answer, those of the recorded machine if one is in force.

namespace Norvik::Platform {

/// The device of the volume that is mounted at a path, as in "/dev/disk1s5". Empty if it is
/// unknown, and on systems other than macOS if no recorded machine is in force.
std::string DeviceMountedAt(const std::string& mountPoint);

/// When the content of a file was last changed, in seconds since the epoch. Empty if there is no
/// such file.
std::optional<long long> ModificationTime(const std::string& path);

}  // namespace Norvik::Platform
