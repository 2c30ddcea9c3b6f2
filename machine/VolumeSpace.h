#pragma once

#include <cstdint>
#include <string>

namespace Norvik::Machine {

struct VolumeSpace {
  std::uint64_t sizeBytes = 0;
  std::uint64_t freeBytes = 0;  ///< for users without privileges
};

/// Space of the volume at a mount point; zeros if it cannot be asked.
VolumeSpace SpaceOf(const std::string& mountPoint);

}  // namespace Norvik::Machine
