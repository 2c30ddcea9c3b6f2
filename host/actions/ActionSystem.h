#pragma once

#include <boost/asio/steady_timer.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "common/action/IActionSystem.h"
#include "common/action/TaskResponseInfo.h"
#include "common/database/AgentData.h"
#include "host/actions/ActionThreads.h"
#include "host/actions/Clock.h"
#include "host/actions/Errand.h"
#include "host/actions/HostActions.h"
#include "host/actions/PendingInventories.h"
#include "host/actions/PeriodicState.h"
#include "host/actions/TaskAnswer.h"

namespace Norvik::Host {

/// An action that runs on an action thread.
struct RunningAction {
  std::string label;  ///< code and name: "1036 ACTION_NAME"
  std::chrono::system_clock::time_point since;
  Lane lane;
};

/// The delayed or periodic action that is due next.
struct DueAction {
  std::string label;
  std::chrono::system_clock::time_point time;
};

/// Runs a module's actions on threads of its own: at once, after a delay, or periodically. Each
/// lane has its own threads; a warning names a lane whose actions wait longer than a minute. An
/// exception that a handler throws there is logged with the action's code, and the thread
/// continues. Safe on any thread.
///
/// Periodic actions keep their state in the agent data (see `PeriodicState`), so a restart neither
/// loses nor repeats a run. Runs of one periodic action never overlap; those that became due while
/// the process was down, or while the action still ran, are replaced by one run. An action with
/// period 0 runs once; then only the time of that run is kept, so that it does not run again when
/// `ReplacePeriodic` requests it again. When the time of day is set back, a periodic action that
/// would wait longer than its period is moved to its next time.
///
/// An inventory of the machine that is due, or that an action of the agent's own requests, does not
/// run if a pending one contains it (see `PendingInventories`).
///
/// A task of the server during which the process died twice in a row is not started again: that is
/// logged and reported. A stop that does not wait for it is no death.
class ActionSystem : public HostActions {
 public:
  static constexpr std::size_t THREADS = 4;  ///< at most, of each lane
  using TaskReporter = std::function<void(const Common::TaskResponseInfo&)>;
  using AnswerReporter = std::function<void(const TaskAnswer&)>;

  /// @param scheduleData stores the state of the schedules given to `AddSchedule`
  explicit ActionSystem(Common::AgentData scheduleData,
                        std::shared_ptr<const Clock> clock = std::make_shared<Clock>(),
                        std::size_t threads = THREADS);
  ActionSystem(const ActionSystem&) = delete;
  ActionSystem& operator=(const ActionSystem&) = delete;
  ~ActionSystem() override;

  void SetActionFactory(Common::ActionFactory factory) override;
  /// To be called before schedules are added. Gets the states of tasks that never reach their
  /// handlers; it must not call back.
  void SetTaskReporter(TaskReporter reporter);
  /// To be called before schedules are added. Gets what the actions of tasks return, if that says
  /// something: rows, a text, a success or an exception. It is called on the action's thread, while
  /// the task still counts as running; it must neither call back nor throw.
  void SetAnswerReporter(AnswerReporter reporter);

  /// A schedule whose identifier is known, from this process or from before a restart, continues if
  /// its period is the same and its time not later; otherwise it replaces the known one.
  void AddSchedule(const Common::Schedule& schedule) override;
  /// Ends all schedules but these, and removes their states. A run that has begun goes on. Throws
  /// what the database throws.
  void KeepSchedules(const std::set<std::string>& identifiers);
  Common::ActionResponse RunAction(Common::ModuleAction action) override;
  void QueueAction(Common::ModuleAction action) override;
  void RunOneShot(unsigned int code, Common::ModuleAction action,
                  std::chrono::seconds delay) override;
  /// Queues an action for the threads of a lane.
  void RunInLane(Lane lane, unsigned int code, Common::ModuleAction action);
  void CreatePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                      const Common::ActionTiming& timing) override;
  void ReplacePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data,
                       const Common::ActionTiming& timing) override;

  /// Continues a periodic action from the state that `data` stored before a restart. Does nothing
  /// if `data` has no state for this code, or the action already exists in this process.
  void ResumePeriodic(unsigned int code, Common::ModuleAction action, Common::AgentData& data);

  /// Waits until no action runs or is due. Does not wait for delayed actions. Must not be called
  /// from a handler.
  void WaitIdle() { threads_.WaitIdle(); }
  /// Starts no further action on the action threads, and waits for those that run. Periodic actions
  /// that have not started stay due in the agent data; others are dropped. Must not be called from
  /// a handler.
  void Stop();
  /// Like `Stop`, but waits at most for the limit; false if actions still run then. The process may
  /// then only exit without destroying what they use.
  bool StopWithin(std::chrono::milliseconds limit);
  /// The actions on the action threads, the longest running first.
  std::vector<RunningAction> Running() const;
  /// Empty if no action is periodic or delayed.
  boost::optional<DueAction> Next() const;
  /// Starts the actions that are due. Only needed after the clock was set: the system checks the
  /// clock by itself when the next action is due, and at least every minute.
  void CheckClock();

 private:
  struct OneShot {
    Lane lane;
    unsigned int code;
    std::string label;
    Common::ModuleAction action;
    std::shared_ptr<Errand> errand = nullptr;  ///< that it belongs to; null for a delayed action
  };
  struct Periodic;
  using PeriodicPointer = std::shared_ptr<Periodic>;

  static PeriodicPointer MakePeriodic(unsigned int code, Common::ModuleAction action,
                                      const Common::AgentData& data,
                                      const Common::ActionTiming& timing);
  bool HasRun(const Periodic& entry) const;
  void Remove(const PeriodicPointer& entry);
  bool RestoreState(Periodic& entry);
  bool GivesUp(const Common::Schedule& schedule, const Periodic& entry, PeriodicState state);
  PeriodicPointer Find(const std::string& key);
  bool IsCurrent(const PeriodicPointer& entry) const;
  void Install(const PeriodicPointer& entry);
  void RunPeriodic(const PeriodicPointer& entry, bool isPending,
                   PendingInventories::Entry inventory);
  bool Begin(const PeriodicPointer& entry);
  void End(const PeriodicPointer& entry);
  void ReportAnswer(const Periodic& entry, ActionResult result);
  ActionResult RunLogged(const OneShot& shot);
  void Post(OneShot shot);
  void PostUnlessPending(OneShot shot);
  void WarnOfLateLanes();
  void ForgiveRunning();
  std::vector<PeriodicPointer> FollowTimeOfDay();
  void StoreMoved(const std::vector<PeriodicPointer>& moved);
  void StartDue();
  void ArmTimer();
  void StopTimer();

  PendingInventories inventories_;
  ActionThreads threads_;
  const std::shared_ptr<const Clock> clock_;
  Common::AgentData scheduleData_;

  /// Held while a state is changed and stored. Locked before `mutex_`, never while that is held:
  /// the database may block a writer.
  std::mutex stateMutex_;
  mutable std::mutex mutex_;
  bool stopped_ = false;
  Common::ActionFactory factory_;
  TaskReporter reporter_;
  AnswerReporter answerReporter_;
  /// The time of both clocks when they were last compared.
  std::chrono::system_clock::time_point lastNow_;
  std::chrono::steady_clock::time_point lastSteady_;
  std::multimap<std::chrono::steady_clock::time_point, OneShot> oneShots_;
  std::map<std::string, PeriodicPointer> periodics_;
  boost::asio::steady_timer timer_;

  mutable std::mutex runningMutex_;
  std::list<RunningAction> running_;
};

}  // namespace Norvik::Host
