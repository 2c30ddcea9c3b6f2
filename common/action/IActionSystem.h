#pragma once

#include <chrono>

#include "common/Api.h"
#include "common/action/ModuleAction.h"

namespace Norvik::Common {

class AgentData;

/// When an action runs periodically.
struct ActionTiming {
  std::chrono::seconds period{0};  ///< 0: once
  std::chrono::system_clock::time_point next;
};

/// Runs actions for a module. All operations may be called from any thread, from inside a handler
/// too. The order of the first three is part of the contract.
class NORVIK_COMMON_API IActionSystem {
 public:
  virtual ~IActionSystem();

  /// Takes on a schedule that the server gave.
  virtual void AddSchedule(const Schedule& schedule) = 0;
  /// Runs the action on the calling thread. What the handler raises comes out here.
  virtual ActionResponse RunAction(ModuleAction action) = 0;
  /// Hands the action to the action threads and returns at once.
  virtual void QueueAction(ModuleAction action) = 0;

  /// Runs the action once on the action threads, after the delay, never inside this call.
  virtual void RunOneShot(unsigned int code, ModuleAction action, std::chrono::seconds delay) = 0;
  /// Installs a periodic action unless the code has one already, in this process or, by its
  /// stored state, from before a restart; then that one goes on. `data` keeps the state.
  virtual void CreatePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                              const ActionTiming& timing) = 0;
  /// The same, but takes the place of a periodic action of the code.
  virtual void ReplacePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                               const ActionTiming& timing) = 0;

 protected:
  IActionSystem() = default;
  IActionSystem(const IActionSystem&) = default;
  IActionSystem& operator=(const IActionSystem&) = default;
};

}  // namespace Norvik::Common
