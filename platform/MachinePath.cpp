#include "platform/MachinePath.h"

#include <filesystem>

namespace Norvik::Platform {

namespace {

std::string& MachineRoot() {
  static std::string root;
  return root;
}

}  // namespace

std::string MachinePath(const std::string& absolute) {
  const std::string& root = MachineRoot();
  const std::filesystem::path path(absolute);
  if (root.empty() || !path.is_absolute()) return absolute;
  // Normalised first: a path with ".." must not lead out of the recording.
  return root + path.lexically_normal().string();
}

void SetMachineRoot(const std::string& folder) { MachineRoot() = folder; }

}  // namespace Norvik::Platform
