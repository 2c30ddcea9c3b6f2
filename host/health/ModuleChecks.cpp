#include <dlfcn.h>

#include <boost/filesystem/operations.hpp>

#include "common/identification/HostInfoProvider.h"
#include "host/assembly/ModuleLoader.h"
#include "host/health/Checks.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

/// The file that holds a function of this process; empty if that is not known.
fs::path FileOf(const void* function) {
  Dl_info information{};
  if (::dladdr(function, &information) == 0 || !information.dli_fname) return {};
  boost::system::error_code unknown;
  return fs::canonical(information.dli_fname, unknown);
}

}  // namespace

Finding FindModule(const Examined& examined) {
  const fs::path& file = examined.Options().moduleFile;
  try {
    CheckModule(file);
  } catch (const std::runtime_error& error) {
    return {Outcome::ERROR, error.what()};
  }
  return {Outcome::OK, file.string()};
}

/// A module has no version of its own: it is that of the library that it shares with the program.
Finding FindModuleVersion(const Examined& examined) {
  const std::string used = Common::GetAgentVersion();
  if (used != Common::AGENT_VERSION) {
    return {Outcome::ERROR, std::string("the program has version ") + Common::AGENT_VERSION +
                                ", its library " + used};
  }
  const fs::path library = FileOf(reinterpret_cast<const void*>(&Common::GetAgentVersion));
  boost::system::error_code missing;
  const fs::path module = fs::canonical(examined.Options().moduleFile, missing);
  if (missing || library.empty()) return {Outcome::UNKNOWN, "the module is not there"};
  if (module.parent_path() != library.parent_path()) {
    return {Outcome::WARNING,
            module.string() + " is of another installation than " + library.string() +
                ", version " + used,
            "", std::string()};
  }
  return {Outcome::OK, "version " + used};
}

}  // namespace Norvik::Host
