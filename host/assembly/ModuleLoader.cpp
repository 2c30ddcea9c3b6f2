#include "host/assembly/ModuleLoader.h"

#include <dlfcn.h>

#include <boost/dll/runtime_symbol_info.hpp>
#include <boost/dll/shared_library.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <string>

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

EntryFunction FindEntry(const boost::filesystem::path& file) {
  // An absolute path, so that the loader searches no other folder.
  const std::string path = boost::filesystem::absolute(file).string();
  void* const library = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!library) throw std::runtime_error("cannot load the module: " + LoaderReason());
  void* const symbol = ::dlsym(library, ENTRY_FUNCTION);
  if (!symbol) throw std::runtime_error(path + " is not a module: " + LoaderReason());
  return reinterpret_cast<EntryFunction>(symbol);
}

}  // namespace

boost::filesystem::path DefaultModuleFile() {
  const auto folder = boost::dll::program_location().parent_path().parent_path() / "lib";
  return folder / ("libNorvikKOB" + boost::dll::shared_library::suffix().string());
}

void CheckModule(const boost::filesystem::path& file) {
  const EntryFunction entry = FindEntry(file);
  try {
    delete entry({});
  } catch (const std::bad_weak_ptr&) {
    // It has compared the versions and then missed the services.
  }
}

std::unique_ptr<IModule> LoadModule(const boost::filesystem::path& file,
                                    const std::weak_ptr<ModuleDependencies>& dependencies) {
  const EntryFunction entry = FindEntry(file);
  std::unique_ptr<IModule> module(entry(dependencies));
  if (!module) throw std::runtime_error(file.string() + " returned no module object");
  return module;
}

}  // namespace Norvik::Host
