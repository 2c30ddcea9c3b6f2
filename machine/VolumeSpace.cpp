#include "machine/VolumeSpace.h"

#include <sys/statvfs.h>

namespace Norvik::Machine {

VolumeSpace SpaceOf(const std::string& mountPoint) {
  struct statvfs space {};
  if (::statvfs(mountPoint.c_str(), &space) != 0) return {};
  const std::uint64_t block = space.f_frsize;
  return {block * space.f_blocks, block * space.f_bavail};
}

}  // namespace Norvik::Machine
