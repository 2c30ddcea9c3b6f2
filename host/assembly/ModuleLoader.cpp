#include "host/assembly/ModuleLoader.h"

#include <dlfcn.h>

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <boost/filesystem/operations.hpp>
#include <regex>
#include <stdexcept>
#include <string>

#include "common/LibraryVersion.h"

namespace Norvik::Host {

namespace {

using Common::IModule;
using Common::ModuleDependencies;

constexpr char ENTRY_FUNCTION[] = "GetAgentModuleObject";
using EntryFunction = IModule* (*)(const std::weak_ptr<ModuleDependencies>&);

std::string LoaderReason() {
  const char* const reason = ::dlerror();
  return reason ? reason : "the loader gives no reason";
}

/// What the loader says of a module for another version of the library names its symbol,
/// `Common::LibraryOf<9, 99>::present`. Empty for any other reason.
std::string WrongVersion(const std::string& reason) {
  static const std::regex symbol("LibraryOfILi([0-9]+)ELi([0-9]+)EE");
  std::smatch numbers;
  if (!std::regex_search(reason, numbers, symbol)) return {};
  return "libNorvikKOB was built with version " + numbers.str(1) + "." + numbers.str(2) +
         " of libNorvikAgentCommon and cannot use version " + Common::LibraryVersion();
}

EntryFunction FindEntry(const boost::filesystem::path& file) {
  // An absolute path, so that the loader searches no other folder.
  const std::string path = boost::filesystem::absolute(file).string();
  void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) {
    const std::string reason = LoaderReason();
    const std::string wrongVersion = WrongVersion(reason);
    throw std::runtime_error(wrongVersion.empty() ? "cannot load the module: " + reason
                                                  : wrongVersion);
  }
  void* const symbol = ::dlsym(library, ENTRY_FUNCTION);
  if (!symbol) throw std::runtime_error(path + " is not a module: " + LoaderReason());
  return reinterpret_cast<EntryFunction>(symbol);
}

}  // namespace

boost::filesystem::path DefaultModuleFile() {
  const auto folder = boost::dll::program_location().parent_path().parent_path() / "lib";
  return folder / ("libNorvikKOB" + boost::dll::shared_library::suffix().string());
}

void CheckModule(const boost::filesystem::path& file) { FindEntry(file); }

std::unique_ptr<IModule> LoadModule(const boost::filesystem::path& file,
                                    const std::weak_ptr<ModuleDependencies>& dependencies) {
  const EntryFunction entry = FindEntry(file);
  std::unique_ptr<IModule> module(entry(dependencies));
  if (!module) throw std::runtime_error(file.string() + " returned no module object");
  return module;
}

}  // namespace Norvik::Host
