#pragma once

#include <boost/asio/steady_timer.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "common/action/IActionSystem.h"
#include "common/database/AgentData.h"
#include "host/actions/ActionThreads.h"
#include "host/actions/Clock.h"
#include "host/actions/HostActions.h"
#include "host/actions/PeriodicState.h"

namespace Norvik::Host {

/// An action that runs on an action thread.
struct RunningAction {
  std::string label;  ///< code and name
  std::chrono::system_clock::time_point since;
};

/// The next action that runs by itself.
struct DueAction {
  std::string label;
  std::chrono::system_clock::time_point time;
};

/// Runs a module's actions on a few threads of its own, at once, after a delay, or periodically.
/// What a handler lets escape is logged with its code, and the thread lives on.
///
/// Periodic actions keep their state in the agent data (see `PeriodicState`), so a restart neither
/// loses nor doubles a run. Runs of one periodic action never overlap; those that fell due while
/// the process was down, or while the action still ran, are made up for by one run. A period of 0
/// runs once and then forgets the state but for the time of that run, which is not made again when
/// `ReplacePeriodic` asks for it anew. When the time of day was set back, a periodic action that
/// would wait longer than its period is moved to its next time.
class ActionSystem : public HostActions {
 public:
  static constexpr std::size_t THREADS = 4;

  /// @param scheduleData keeps the state of what `AddSchedule` takes on
  explicit ActionSystem(Common::AgentData scheduleData,
                        std::shared_ptr<const Clock> clock = std::make_shared<Clock>(),
                        std::size_t threads = THREADS);
  ActionSystem(const ActionSystem&) = delete;
  ActionSystem& operator=(const ActionSystem&) = delete;
  ~ActionSystem() override;

  void SetActionFactory(Common::ActionFactory factory) override;

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

  /// Lets a periodic action go on where the store left it before a restart. Nothing happens if the
  /// store has none of this code, or one was installed in this process.
  void ResumePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data);

  /// Waits until no action runs or is due. Delayed actions are not waited for. Not from a handler.
  void WaitIdle() { threads_.WaitIdle(); }
  /// From now on no action starts on the action threads; waits for those that run. What has not
  /// started stays due in the agent data if it is periodic, and is dropped if not. Not from a
  /// handler.
  void Stop();
  /// The same, but waits no longer than the limit; false if actions still run then. The process
  /// may then only end without destroying what they use.
  bool StopWithin(std::chrono::milliseconds limit);
  /// What runs on the action threads now, the longest first.
  std::vector<RunningAction> Running() const;
  /// Empty if none is periodic or delayed.
  boost::optional<DueAction> Next() const;
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

  static PeriodicPointer OfCode(unsigned int code, Common::ModuleAction action,
                                const Common::AgentData& data, const Common::ActionTiming& timing);
  bool WasMade(const Periodic& entry) const;
  void Forget(const PeriodicPointer& entry);
  bool TakeUpStored(Periodic& entry);
  PeriodicPointer Known(const std::string& key);
  bool IsCurrent(const PeriodicPointer& entry) const;
  void Install(const PeriodicPointer& entry);
  void RunPeriodic(const PeriodicPointer& entry);
  bool Begin(const PeriodicPointer& entry);
  void End(const PeriodicPointer& entry);
  void RunLogged(const std::string& label, Common::ModuleAction action);
  std::vector<PeriodicPointer> FollowTimeOfDay();
  void StoreMoved(const std::vector<PeriodicPointer>& moved);
  void StartDue();
  void ArmTimer();
  void StopTimer();

  ActionThreads threads_;
  const std::shared_ptr<const Clock> clock_;
  Common::AgentData scheduleData_;

  /// Held while a state is decided and stored. Taken before `mutex_`, never inside it: the database
  /// may keep a writer waiting.
  std::mutex stateMutex_;
  mutable std::mutex mutex_;
  bool stopped_ = false;
  Common::ActionFactory factory_;
  /// Both clocks when they were last compared.
  std::chrono::system_clock::time_point seenNow_;
  std::chrono::steady_clock::time_point seenSteady_;
  std::multimap<std::chrono::steady_clock::time_point, OneShot> oneShots_;
  std::map<std::string, PeriodicPointer> periodics_;
  boost::asio::steady_timer timer_;

  mutable std::mutex runningMutex_;
  std::list<RunningAction> running_;
};

}  // namespace Norvik::Host
