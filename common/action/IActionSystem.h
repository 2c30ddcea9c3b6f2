#pragma once

#include <chrono>

#include "common/Api.h"
#include "common/action/ModuleAction.h"

namespace Norvik::Common {

class AgentData;

/// The times of a periodic action.
struct ActionTiming {
  std::chrono::seconds period{0};              ///< 0: once
  std::chrono::system_clock::time_point next;  ///< first run; at once if it is past
};

/// Runs actions for a module, on threads of the host. All operations may be called from any thread,
/// also from inside a handler. `AgentData` is copied during the call. The order of the first three
/// operations is part of the contract.
class NORVIK_COMMON_API IActionSystem {
 public:
  virtual ~IActionSystem();

  /// Installs a task of the server, to run at its times, under its identifier.
  virtual void AddSchedule(const Schedule& schedule) = 0;
  /// Runs the action on the calling thread and returns its response. Passes on what the handler
  /// throws.
  virtual ActionResponse RunAction(ModuleAction action) = 0;
  /// Queues the action for the action threads and returns at once.
  virtual void QueueAction(ModuleAction action) = 0;

  /// Runs the action once on an action thread, after the delay, never inside this call. It is not
  /// kept over a restart.
  virtual void RunOneShot(unsigned int code, ModuleAction action, std::chrono::seconds delay) = 0;
  /// Installs a periodic action. If the code has one already, in this process or, by its stored
  /// state, from before a restart, that one continues instead. The state is stored in `data` under
  /// the code.
  virtual void CreatePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                              const ActionTiming& timing) = 0;
  /// Installs a periodic action, replacing one that the code has.
  virtual void ReplacePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                               const ActionTiming& timing) = 0;

 protected:
  IActionSystem() = default;
  IActionSystem(const IActionSystem&) = default;
  IActionSystem& operator=(const IActionSystem&) = default;
};

}  // namespace Norvik::Common
