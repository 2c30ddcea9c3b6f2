#pragma once

#include <functional>
#include <string>

#include "common/Api.h"
#include "common/action/ActionParameters.h"
#include "common/action/ActionResponse.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

using ActionHandler = std::function<ActionResponse(ActionParameters&)>;

/// One action, ready to run, with its own copy of the parameters.
struct NORVIK_COMMON_API ModuleAction {
  ModuleAction() = default;
  ModuleAction(const ModuleAction&) = default;
  ModuleAction(ModuleAction&&) = default;
  ModuleAction& operator=(const ModuleAction&) = default;
  ModuleAction& operator=(ModuleAction&&) = default;
  virtual ~ModuleAction();

  ActionParameters parameters;
  /// Name of the code, for logs. Empty if nothing is registered for the code; `handler` is then
  /// the default action, which warns and answers a default response.
  std::string name;
  ActionHandler handler;
};

/// Turns a code into a runnable action. The parameters are copied.
using ActionFactory = std::function<ModuleAction(unsigned int, const ActionParameters&)>;

/// A task downloaded from the server: a code to run with parameters, once or periodically. A module
/// only passes it on to the action system.
struct Schedule {
  std::string identifier;  ///< the server's name of the task, by which it is told from others
  unsigned int code = 0;
  ActionParameters parameters;
  ScheduleInfo when;
};

}  // namespace Norvik::Common
