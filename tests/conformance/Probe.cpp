#include "conformance/Probe.h"

using Norvik::Conformance::MakeModule;

namespace {

MakeModule makeModule = nullptr;

}  // namespace

extern "C" void SetNorvikModuleMaker(MakeModule maker) { makeModule = maker; }

extern "C" __attribute__((visibility("default"))) Norvik::Common::IModule* GetAgentModuleObject(
    const std::weak_ptr<Norvik::Common::ModuleDependencies>& dependencies) {
  return makeModule(dependencies);
}
