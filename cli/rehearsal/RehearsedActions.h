#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <vector>

#include "host/actions/ActionSystem.h"

namespace Norvik::Cli {

/// An action that another one has started under a rehearsal.
struct StartedAction {
  enum Kind { RUN, QUEUED, ONCE, PERIODIC, REPLACED_PERIODIC, SCHEDULED };

  Kind kind = RUN;
  unsigned int code = 0;  ///< 0: not known, as that of an action that is handed on by itself
  std::string name;
  std::chrono::seconds delay{0};   ///< of one that runs once
  std::chrono::seconds period{0};  ///< of a periodic one
  std::chrono::system_clock::time_point next;
};

/// Keeps what is started and runs nothing, but for what is to run before the call returns. The
/// states of periodic actions go to the agent data as those of an agent would.
class RehearsedActions : public Host::HostActions {
 public:
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

  std::vector<StartedAction> Started() const;
  /// What was started as the second half of the action itself, oldest first; each once.
  std::vector<Common::ModuleAction> TakeContinuations();

 private:
  void Keep(StartedAction started);

  mutable std::mutex mutex_;
  std::vector<StartedAction> started_;
  std::vector<Common::ModuleAction> continuations_;
  Host::ActionSystem stopped_;  ///< starts nothing, and keeps the states
};

}  // namespace Norvik::Cli
