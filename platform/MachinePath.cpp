#include "platform/MachinePath.h"

#include <filesystem>
#include <system_error>
#include <utility>

namespace Norvik::Platform {

namespace {

std::string& MachineRoot() {
  static std::string root;
  return root;
}

PathObserver& TheObserver() {
  static PathObserver observer;
  return observer;
}

std::string Resolve(const std::string& absolute, bool isOpened) {
  const std::string& root = MachineRoot();
  const std::filesystem::path path(absolute);
  if (!path.is_absolute()) return absolute;
  if (const auto& observer = TheObserver()) observer(absolute, isOpened);
  // Normalised first: a path with ".." must not lead out of the recording.
  return root.empty() ? absolute : root + path.lexically_normal().string();
}

}  // namespace

std::string MachinePath(const std::string& absolute) { return Resolve(absolute, true); }

bool MachineHas(const std::string& absolute) {
  std::error_code unknown;
  return std::filesystem::exists(Resolve(absolute, false), unknown);
}

void SetPathObserver(PathObserver observer) { TheObserver() = std::move(observer); }

void SetMachineRoot(const std::string& folder) { MachineRoot() = folder; }

}  // namespace Norvik::Platform
