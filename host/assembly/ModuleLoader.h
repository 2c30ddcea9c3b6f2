#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"

namespace Norvik::Host {

/// The module's file that belongs to this program: `../lib` beside the executable.
boost::filesystem::path DefaultModuleFile();

/// Loads a module and makes its object. The file stays loaded until the process ends, because
/// functions and types of it may outlive the object. Raises `std::runtime_error` with the reason
/// that the system's loader or the module gave.
std::unique_ptr<Common::IModule> LoadModule(
    const boost::filesystem::path& file,
    const std::weak_ptr<Common::ModuleDependencies>& dependencies);

}  // namespace Norvik::Host
