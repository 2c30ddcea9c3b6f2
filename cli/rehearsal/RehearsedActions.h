#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "host/actions/ActionSystem.h"

namespace Norvik::Cli {

/// An action that another one started during a rehearsal.
struct StartedAction {
  enum Kind { RUN, QUEUED, ONCE, PERIODIC, REPLACED_PERIODIC, SCHEDULED };

  Kind kind = RUN;
  unsigned int code = 0;  ///< 0: unknown, for an action without a known name
  std::string name;
  std::chrono::seconds delay{0};               ///< of ONCE
  std::chrono::seconds period{0};              ///< of PERIODIC and those after it
  std::chrono::system_clock::time_point next;  ///< likewise: when it would run first
};

/// Records the actions that are started and runs none, except those of `RunAction`, which run
/// before the call returns. The states of periodic actions are written to the agent data as in a
/// running agent. Safe on any thread.
class RehearsedActions : public Host::HostActions {
 public:
  /// @param scheduleData stores the state of the schedules given to `AddSchedule`
  explicit RehearsedActions(const Common::AgentData& scheduleData);
  ~RehearsedActions() override;

  void SetActionFactory(Common::ActionFactory factory) override;

  void AddSchedule(const Common::Schedule& schedule) override;
  Common::ActionResponse RunAction(Common::ModuleAction action) override;
  void QueueAction(Common::ModuleAction action) override;
  void RunOneShot(unsigned int code, Common::ModuleAction action,
                  std::chrono::seconds delay) override;
  void CreatePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                      const Common::ActionTiming& timing) override;
  void ReplacePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                       const Common::ActionTiming& timing) override;

  /// All actions started so far, in order.
  std::vector<StartedAction> Started() const;
  /// Removes and returns the actions that were started as the second half of another one, oldest
  /// first. The caller runs them.
  std::vector<Common::ModuleAction> TakeContinuations();

 private:
  void Keep(StartedAction started);

  mutable std::mutex mutex_;
  std::vector<StartedAction> started_;
  std::vector<Common::ModuleAction> continuations_;
  Host::ActionSystem stopped_;  ///< runs nothing on its threads, and writes the states
};

}  // namespace Norvik::Cli
