#include "platform/Volumes.h"

#include <sys/stat.h>

#include "platform/RecordedMachine.h"
#include "platform/compat/RecordedJson.h"

namespace Norvik::Platform {

using nlohmann::json;

std::string DeviceMountedAt(const std::string& mountPoint) {
  std::string device;
  const json volumes = RecordedJson("volumes.json");
  ForEachObject(MemberOf(volumes, "mounts"), [&](const json& mount) {
    if (TextAt(mount, "mountPoint") == mountPoint) device = TextAt(mount, "device");
  });
  return device;
}

std::optional<long long> ModificationTime(const std::string& path) {
  if (IsMachineRecorded()) {
    const json volumes = RecordedJson("volumes.json");
    const json& seconds = MemberOf(MemberOf(volumes, "modified"), path.c_str());
    if (!seconds.is_number_integer()) return std::nullopt;
    return seconds.get<long long>();
  }
  struct stat state {};
  if (::stat(path.c_str(), &state) != 0) return std::nullopt;
  return static_cast<long long>(state.st_mtime);
}

}  // namespace Norvik::Platform
