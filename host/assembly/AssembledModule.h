#pragma once

#include <boost/filesystem/path.hpp>
#include <memory>

#include "common/action/IModule.h"
#include "common/action/ModuleDependencies.h"
#include "common/database/AgentDatabase.h"
#include "host/actions/HostActions.h"
#include "host/identity/AgentIdentity.h"

namespace Norvik::Host {

/// The parts that a module works with, ready to use. No pointer is null.
struct AgentParts {
  Common::AgentConfigurationInfo configuration;
  bool userProcess = false;
  std::shared_ptr<Common::AgentDatabase> dataBase;
  std::shared_ptr<const AgentIdentity> identity;
  std::shared_ptr<Common::ICommunicationSystem> communications;
  std::shared_ptr<HostActions> actions;
};

/// A loaded module with its parts.
struct AssembledModule {
  // Each member needs those above it, so the module is destroyed first.
  AgentParts parts;
  std::shared_ptr<Common::IIdentificationSystem> identification;
  std::shared_ptr<Common::ModuleDependencies> dependencies;
  std::unique_ptr<Common::IModule> module;
};

/// Loads the module and connects it with its parts. Throws what `LoadModule` throws.
std::unique_ptr<AssembledModule> AssembleModule(const boost::filesystem::path& file,
                                                AgentParts parts);

}  // namespace Norvik::Host
