#include "platform/Volumes.h"

#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>

namespace Norvik::Platform {

std::string DeviceMountedAt(const std::string& mountPoint) {
  struct statfs volume {};
  return ::statfs(mountPoint.c_str(), &volume) == 0 ? volume.f_mntfromname : std::string();
}

std::optional<long long> ModificationTime(const std::string& path) {
  struct stat state {};
  if (::stat(path.c_str(), &state) != 0) return std::nullopt;
  return static_cast<long long>(state.st_mtime);
}

}  // namespace Norvik::Platform
