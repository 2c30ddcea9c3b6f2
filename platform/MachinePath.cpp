#include "platform/MachinePath.h"

#include <filesystem>

#include "platform/MachineObserver.h"

namespace Norvik::Platform {

namespace {

std::string& MachineRoot() {
  static std::string root;
  return root;
}

std::string Resolve(const std::string& absolute, Asked asked) {
  const std::string& root = MachineRoot();
  const std::filesystem::path path(absolute);
  if (!path.is_absolute()) return absolute;
  Observe(asked, absolute);
  // Normalised first: a path with ".." must not lead out of the recording.
  return root.empty() ? absolute : root + path.lexically_normal().string();
}

}  // namespace

std::string MachinePath(const std::string& absolute) { return Resolve(absolute, Asked::FILE); }

bool MachineHas(const std::string& absolute) {
  return std::filesystem::exists(Resolve(absolute, Asked::EXISTENCE));
}

void SetMachineRoot(const std::string& folder) { MachineRoot() = folder; }

}  // namespace Norvik::Platform
