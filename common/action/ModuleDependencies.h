#pragma once

#include <memory>

#include "common/configuration/AgentConfigurationInfo.h"
#include "common/database/IDataBase.h"
#include "common/identification/IIdentificationSystem.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

class IActionSystem;

/// What the host hands to a module. The host owns it and everything it points to, and keeps it
/// alive until the module is gone.
struct ModuleDependencies {
  AgentConfigurationInfo configuration;
  std::weak_ptr<IIdentificationSystem> identification;
  int processKind = 0;  ///< 0 in the service, any other value in a per-user process
  std::weak_ptr<IActionSystem> actionSystem;
  std::weak_ptr<ICommunicationSystem> communications;
  std::weak_ptr<IDataBase> dataBase;
};

}  // namespace Norvik::Common
