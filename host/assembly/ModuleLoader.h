#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"

namespace Norvik::Host {

/// The module that belongs to this program: in `lib` next to the folder of the executable.
boost::filesystem::path DefaultModuleFile();

/// Throws `std::runtime_error` if the file is no module that could be loaded, or one for another
/// version of the common library. Makes no object; the library stays loaded.
void CheckModule(const boost::filesystem::path& file);

/// Loads a module and creates its object. The library stays loaded until the process ends, because
/// its functions and types may outlive the object. Throws `std::runtime_error` with the reason of
/// the system's loader, or what the module throws.
std::unique_ptr<Common::IModule> LoadModule(
    const boost::filesystem::path& file,
    const std::weak_ptr<Common::ModuleDependencies>& dependencies);

}  // namespace Norvik::Host
