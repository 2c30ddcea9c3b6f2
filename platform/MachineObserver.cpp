#include "platform/MachineObserver.h"

#include <utility>

namespace Norvik::Platform {

namespace {

MachineObserver& TheObserver() {
  static MachineObserver observer;
  return observer;
}

}  // namespace

void SetMachineObserver(MachineObserver observer) { TheObserver() = std::move(observer); }

void Observe(Asked asked, const std::string& name, const std::string& answer) {
  if (const auto& observer = TheObserver()) observer(asked, name, answer);
}

}  // namespace Norvik::Platform
