#pragma once

#include <memory>

#include "common/configuration/AgentConfigurationInfo.h"
#include "common/database/IDataBase.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

class IActionSystem;

/// The services and the configuration that the host gives a module. The host owns this object and
/// everything it points to, and keeps it until the module is gone. A module copies the
/// configuration and locks a pointer for each use.
struct ModuleDependencies {
  AgentConfigurationInfo configuration;
  std::weak_ptr<IIdentificationSystem> identification;
  int processKind = 0;  ///< 0 in the service, any other value in a per-user process
  std::weak_ptr<IActionSystem> actionSystem;
  std::weak_ptr<ICommunicationSystem> communications;
  std::weak_ptr<IDataBase> dataBase;
};

}  // namespace Norvik::Common
