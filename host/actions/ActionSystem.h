#pragma once

#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "common/action/IActionSystem.h"
#include "common/database/AgentData.h"
#include "host/actions/ActionThreads.h"
#include "host/actions/Clock.h"
#include "host/actions/PeriodicState.h"

namespace Norvik::Host {

/// Runs a module's actions on a few threads of its own, at once, after a delay, or periodically.
/// What a handler lets escape is logged with its code, and the thread lives on.
///
/// Periodic actions keep their state in the agent data (see `PeriodicState`), so a restart neither
/// loses nor doubles a run. Runs of one periodic action never overlap; those that fell due while
/// the process was down, or while the action still ran, are made up for by one run. A period of 0
/// runs once and then forgets the state.
class ActionSystem : public Common::IActionSystem {
 public:
  static constexpr std::size_t THREADS = 4;

  /// @param scheduleData keeps the state of what `AddSchedule` takes on
  explicit ActionSystem(Common::AgentData scheduleData,
                        std::shared_ptr<const Clock> clock = std::make_shared<Clock>(),
                        std::size_t threads = THREADS);
  ActionSystem(const ActionSystem&) = delete;
  ActionSystem& operator=(const ActionSystem&) = delete;
  ~ActionSystem() override;

  /// Where the actions of schedules come from. Until it is set they are refused, and logged.
  void SetActionFactory(Common::ActionFactory factory);

  /// A schedule of a known identifier, in this process or from before a restart, goes on if its
  /// period is the same and its time not later; otherwise it takes the known one's place.
  void AddSchedule(const Common::Schedule& schedule) override;
  Common::ActionResponse RunAction(Common::ModuleAction action) override;
  void QueueAction(Common::ModuleAction action) override;
  void RunOneShot(unsigned int code, Common::ModuleAction action,
                  std::chrono::seconds delay) override;
  void CreatePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                      const Common::ActionTiming& timing) override;
  void ReplacePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                       const Common::ActionTiming& timing) override;

  /// Waits until no action runs or is due. Delayed actions are not waited for. Not from a handler.
  void WaitIdle() { threads_.WaitIdle(); }
  /// From now on no action starts on the action threads; waits for those that run. What has not
  /// started stays due in the agent data if it is periodic, and is dropped if not. Not from a
  /// handler.
  void Stop();
  /// Starts what has fallen due. Needed only behind a clock that was set: the system looks by
  /// itself when the next action is due, and now and then.
  void LookAtClock();

 private:
  struct OneShot {
    std::string label;
    Common::ModuleAction action;
  };
  struct Periodic;
  using PeriodicPointer = std::shared_ptr<Periodic>;

  bool TakeUpStored(Periodic& entry);
  PeriodicPointer Known(const std::string& key);
  bool IsCurrent(const PeriodicPointer& entry) const;
  void Install(const PeriodicPointer& entry);
  void RunPeriodic(const PeriodicPointer& entry);
  bool Begin(const PeriodicPointer& entry);
  void End(const PeriodicPointer& entry);
  void StartDue();
  void ArmTimer();

  ActionThreads threads_;
  const std::shared_ptr<const Clock> clock_;
  Common::AgentData scheduleData_;

  /// Held while a state is decided and stored. Taken before `mutex_`, never inside it: the database
  /// may keep a writer waiting.
  std::mutex stateMutex_;
  mutable std::mutex mutex_;
  bool stopped_ = false;
  Common::ActionFactory factory_;
  std::multimap<std::chrono::steady_clock::time_point, OneShot> oneShots_;
  std::map<std::string, PeriodicPointer> periodics_;
  boost::asio::steady_timer timer_;
};

}  // namespace Norvik::Host
