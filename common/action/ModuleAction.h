#pragma once

#include <functional>
#include <string>

#include "common/Api.h"
#include "common/action/ActionParameters.h"
#include "common/action/ActionResponse.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

/// Does the work of an action on the calling thread. May change the parameters, which are the
/// action's own copy.
using ActionHandler = std::function<ActionResponse(ActionParameters&)>;

/// One action, ready to run: call `handler(parameters)`.
struct NORVIK_COMMON_API ModuleAction {
  ModuleAction() = default;
  ModuleAction(const ModuleAction&) = default;
  ModuleAction(ModuleAction&&) = default;
  ModuleAction& operator=(const ModuleAction&) = default;
  ModuleAction& operator=(ModuleAction&&) = default;
  virtual ~ModuleAction();

  ActionParameters parameters;
  /// The name of the code, for logs. Empty if the code has no handler; then `handler` is the
  /// default action, which logs a warning and returns a default response.
  std::string name;
  ActionHandler handler;
};

/// Makes the action of a code, with a copy of the parameters; see `IModule::GetAction`.
using ActionFactory = std::function<ModuleAction(unsigned int, const ActionParameters&)>;

/// A task downloaded from the server: a code to run with parameters, once or periodically. A module
/// only passes it on to the action system.
struct Schedule {
  std::string identifier;  ///< the server's; a task that is sent again has the same
  unsigned int code = 0;
  ActionParameters parameters;
  ScheduleInfo when;
};

}  // namespace Norvik::Common
