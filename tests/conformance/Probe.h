#pragma once

#include <memory>

#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"

namespace Norvik::Conformance {

using MakeModule = Common::IModule* (*)(const std::weak_ptr<Common::ModuleDependencies>&);

}  // namespace Norvik::Conformance

// The module that a host under check loads. It exports the entry function of a module, and this
// one, by which the program sets the function that makes the object.
extern "C" __attribute__((visibility("default"))) void SetNorvikModuleMaker(
    Norvik::Conformance::MakeModule maker);
