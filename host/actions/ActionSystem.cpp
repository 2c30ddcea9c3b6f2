#include "host/actions/ActionSystem.h"

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/format.hpp>
#include <exception>
#include <utility>

#include "common/action/TaskOrigin.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/FreeMemory.h"

namespace Norvik::Host {

using namespace Common;
using std::chrono::seconds;
using std::chrono::system_clock;

/// A periodic action. `state`, `waiting` and `spent` are guarded by the system's `mutex_`; the rest
/// does not change.
struct ActionSystem::Periodic {
  Periodic(Lane threads, unsigned int actionCode, std::string keyText, std::string labelText,
           ModuleAction runnable, AgentData store, const ActionTiming& timing)
      : lane(threads),
        code(actionCode),
        key(std::move(keyText)),
        label(std::move(labelText)),
        action(std::move(runnable)),
        data(std::move(store)) {
    state.period = std::max(timing.period, seconds(0));
    state.next = timing.next;
  }

  const Lane lane;
  const unsigned int code;
  const std::string key;
  const std::string label;
  const ModuleAction action;
  AgentData data;
  std::string task;     ///< its identifier; empty for an action of the agent's own
  std::string doneKey;  ///< empty for a schedule, whose state is removed after its only run
  PeriodicState state;
  bool waiting = false;  ///< for a thread, or for the end of its run
  bool spent = false;    ///< its only run has started
};

namespace {

/// Limits the wait, since the time of day may be set at any time and the steady clock may stop
/// while the machine sleeps.
constexpr seconds LONGEST_WAIT(60);
constexpr seconds LONGEST_DELAY(std::chrono::hours(24 * 3650));
/// Smaller differences between the two clocks are normal corrections.
constexpr seconds CLOCK_TOLERANCE(60);
/// How long an action may wait for a thread without a warning.
constexpr seconds LATE(60);
/// So many runs of a task may end with the process. One more in the state: that is reported.
constexpr unsigned int DEATHS_LIMIT = 2;
constexpr char GIVEN_UP[] =
    "the agent has ended twice while this task ran; it is not started again";
constexpr char ALREADY_PENDING[] =
    "Action %1% does not run: an inventory that contains it is pending";
constexpr char UNKNOWN_EXCEPTION[] = "unknown exception";
constexpr std::size_t NAMED = 5;  ///< schedules that one line names

std::string LabelOf(unsigned int code, const ModuleAction& action) {
  return std::to_string(code) + (action.name.empty() ? "" : " " + action.name);
}

ActionResponse Invoke(ModuleAction& action) {
  if (action.handler) return action.handler(action.parameters);
  NORVIK_WARNING("An action has no handler; nothing runs");
  return {};
}

bool SaysSomething(const ActionResult& result) {
  const ActionResponse& response = result.response;
  return !result.failure.empty() || response.text || response.success ||
         !response.table.Rows().empty();
}

void Store(AgentData& data, const std::string& key, const PeriodicState& state) {
  if (!data.SetString(key, ToText(state))) {
    NORVIK_ERROR(boost::format("The state of %1% could not be stored") % key);
  }
}

boost::optional<PeriodicState> Load(const AgentData& data, const std::string& key) {
  const auto text = data.GetOptionalString(key);
  if (!text) return boost::none;
  auto state = ParsePeriodicState(*text);
  if (!state) NORVIK_WARNING(boost::format("The state of %1% is unreadable: %2%") % key % *text);
  return state;
}

}  // namespace

ActionSystem::ActionSystem(AgentData scheduleData, std::shared_ptr<const Clock> clock,
                           std::size_t threads)
    : threads_(threads),
      clock_(std::move(clock)),
      scheduleData_(std::move(scheduleData)),
      lastNow_(clock_->Now()),
      lastSteady_(clock_->Steady()),
      timer_(threads_.Context()) {}

ActionSystem::~ActionSystem() { Stop(); }

void ActionSystem::SetActionFactory(ActionFactory factory) {
  const std::lock_guard<std::mutex> lock(mutex_);
  factory_ = std::move(factory);
}

void ActionSystem::SetTaskReporter(TaskReporter reporter) {
  const std::lock_guard<std::mutex> lock(mutex_);
  reporter_ = std::move(reporter);
}

void ActionSystem::SetAnswerReporter(AnswerReporter reporter) {
  const std::lock_guard<std::mutex> lock(mutex_);
  answerReporter_ = std::move(reporter);
}

ActionResponse ActionSystem::RunAction(ModuleAction action) { return Invoke(action); }

void ActionSystem::QueueAction(ModuleAction action) {
  const unsigned int code = ActionCodeOf(action.name);
  std::string label = action.name;
  PostUnlessPending({LaneOf(code), code, std::move(label), std::move(action), Errand::Current()});
}

void ActionSystem::RunInLane(Lane lane, unsigned int code, ModuleAction action) {
  std::string label = LabelOf(code, action);
  Post({lane, code, std::move(label), std::move(action), Errand::Current()});
}

void ActionSystem::Post(OneShot shot) {
  const Lane lane = shot.lane;
  auto entry = inventories_.Add(shot.code);
  threads_.Post(lane, clock_->Steady(), [this, shot = std::move(shot), entry]() mutable {
    RunLogged(shot);
    entry.reset();
  });
}

void ActionSystem::PostUnlessPending(OneShot shot) {
  if (!inventories_.Contain(shot.code, shot.action.parameters)) return Post(std::move(shot));
  NORVIK_DETAIL(boost::format(ALREADY_PENDING) % shot.label);
}

void ActionSystem::RunOneShot(unsigned int code, ModuleAction action, seconds delay) {
  std::string label = LabelOf(code, action);
  OneShot shot{LaneOf(code), code, std::move(label), std::move(action)};
  if (delay <= seconds(0)) {
    shot.errand = Errand::Current();
    return PostUnlessPending(std::move(shot));
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  oneShots_.emplace(clock_->Steady() + std::min(delay, LONGEST_DELAY), std::move(shot));
  ArmTimer();
}

void ActionSystem::CreatePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                  const ActionTiming& timing) {
  const auto entry = MakePeriodic(code, std::move(action), data, timing);
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  if (const auto known = Find(entry->key)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!known->spent) return;
  } else {
    RestoreState(*entry);
  }
  Install(entry);
}

void ActionSystem::ReplacePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                   const ActionTiming& timing) {
  const auto entry = MakePeriodic(code, std::move(action), data, timing);
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  HasRun(*entry) ? Remove(entry) : Install(entry);
}

void ActionSystem::ResumePeriodic(unsigned int code, ModuleAction action, AgentData& data) {
  const auto entry = MakePeriodic(code, std::move(action), data, ActionTiming());
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  if (!Find(entry->key) && RestoreState(*entry)) Install(entry);
}

void ActionSystem::AddSchedule(const Schedule& schedule) {
  ActionFactory factory;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    factory = factory_;
  }
  if (!factory) {
    NORVIK_ERROR(boost::format("Schedule %1% came before the module") % schedule.identifier);
    return;
  }
  ModuleAction action = factory(schedule.code, schedule.parameters);
  std::string label = LabelOf(schedule.code, action);
  const bool isInventory = LaneOf(schedule.code) == Lane::Inventories;
  const auto entry = std::make_shared<Periodic>(
      isInventory ? Lane::Inventories : Lane::Tasks, schedule.code,
      SCHEDULE_KEY_PREFIX + schedule.identifier, std::move(label), std::move(action), scheduleData_,
      ActionTiming{seconds(schedule.when.periodSeconds), schedule.when.NextTime()});
  entry->task = schedule.identifier;

  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  if (const auto known = Find(entry->key)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool same = known->state.period == entry->state.period;
    if (same && known->state.next >= entry->state.next) return;
  } else if (const auto stored = Load(entry->data, entry->key)) {
    if (stored->period == entry->state.period) {
      if (GivesUp(schedule, *entry, *stored)) return;
      entry->state.begun = stored->begun;
      if (stored->next >= entry->state.next) entry->state.next = stored->Due();
    }
  }
  Install(entry);
}

/// Whether the process has died too often in this task. The first time that is reported, and then
/// kept as long as the server lists the task. `stateMutex_` must be held.
bool ActionSystem::GivesUp(const Schedule& schedule, const Periodic& entry, PeriodicState state) {
  if (state.begun < DEATHS_LIMIT) return false;
  if (state.begun > DEATHS_LIMIT) return true;
  NORVIK_ERROR(boost::format("The server's task %1%, action %2%: %3%") %
               OnOneLine(schedule.identifier) % entry.label % GIVEN_UP);
  TaskReporter reporter;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    reporter = reporter_;
  }
  if (reporter) {
    reporter(StatusOfTask(schedule.parameters, TaskResponseInfo::TASK_FAILED, GIVEN_UP));
  }
  ++state.begun;
  AgentData data = entry.data;
  Store(data, entry.key, state);
  return true;
}

void ActionSystem::KeepSchedules(const std::set<std::string>& identifiers) {
  const std::size_t prefix = sizeof SCHEDULE_KEY_PREFIX - 1;
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  std::string names;
  std::size_t count = 0;
  for (const std::string& key : scheduleData_.NamesFrom(SCHEDULE_KEY_PREFIX)) {
    const std::string identifier = key.substr(prefix);
    if (identifiers.count(identifier) != 0) continue;
    scheduleData_.Remove(key);
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      periodics_.erase(key);
    }
    if (++count <= NAMED) names += (names.empty() ? "" : ", ") + OnOneLine(identifier);
  }
  if (count == 0) return;
  if (count > NAMED) names += ", ...";
  NORVIK_INFORMATION(boost::format("The server no longer lists %1% of its tasks, which end: %2%") %
                     std::to_string(count) % names);
}

ActionSystem::PeriodicPointer ActionSystem::MakePeriodic(unsigned int code, ModuleAction action,
                                                         const AgentData& data,
                                                         const ActionTiming& timing) {
  std::string label = LabelOf(code, action);
  auto entry = std::make_shared<Periodic>(LaneOf(code), code, PeriodicKey(code), std::move(label),
                                          std::move(action), data, timing);
  entry->doneKey = DoneKey(code);
  return entry;
}

/// Whether the entry is a single run at a past time that has already run. A configuration requests
/// it again at each start of the process.
bool ActionSystem::HasRun(const Periodic& entry) const {
  if (entry.state.period != seconds(0) || entry.state.next > clock_->Now()) return false;
  return entry.data.GetOptionalString(entry.doneKey) == ToText(entry.state);
}

void ActionSystem::Remove(const PeriodicPointer& entry) {
  entry->data.Remove(entry->key);
  const std::lock_guard<std::mutex> lock(mutex_);
  periodics_.erase(entry->key);
}

/// Continues an action that is new in this process from its stored state; false without one.
bool ActionSystem::RestoreState(Periodic& entry) {
  const auto stored = Load(entry.data, entry.key);
  if (!stored) return false;
  entry.state.period = stored->period;
  entry.state.next = stored->Due();
  entry.state.begun = stored->begun;
  return true;
}

ActionSystem::PeriodicPointer ActionSystem::Find(const std::string& key) {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto found = periodics_.find(key);
  return found == periodics_.end() ? nullptr : found->second;
}

void ActionSystem::Install(const PeriodicPointer& entry) {
  Store(entry->data, entry->key, entry->state);
  const std::lock_guard<std::mutex> lock(mutex_);
  periodics_[entry->key] = entry;
  StartDue();
}

/// Whether the action has not been replaced. `mutex_` must be held.
bool ActionSystem::IsCurrent(const PeriodicPointer& entry) const {
  const auto found = periodics_.find(entry->key);
  return found != periodics_.end() && found->second == entry;
}

/// @param isPending the action counts as an inventory that is pending
/// @param inventory the action's own entry among the pending ones
void ActionSystem::RunPeriodic(const PeriodicPointer& entry, bool isPending,
                               PendingInventories::Entry inventory) {
  if (!Begin(entry)) return;
  if (isPending) {
    NORVIK_DETAIL(boost::format(ALREADY_PENDING) % entry->label);
  } else {
    ActionResult result = RunLogged({entry->lane, entry->code, entry->label, entry->action});
    // Before the end of the task: a process that dies before the answer is stored repeats the run.
    if (!entry->task.empty()) ReportAnswer(*entry, std::move(result));
  }
  inventory.reset();
  End(entry);
}

void ActionSystem::ReportAnswer(const Periodic& entry, ActionResult result) {
  if (!SaysSomething(result)) return;
  AnswerReporter reporter;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    reporter = answerReporter_;
  }
  if (!reporter) return;
  const auto origin = StatusOfTask(entry.action.parameters, TaskResponseInfo::TASK_FINISHED, "");
  reporter({entry.task, origin.requestId, entry.code, std::move(result)});
}

bool ActionSystem::Begin(const PeriodicPointer& entry) {
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  PeriodicState state;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsCurrent(entry)) return false;
    entry->state.interrupted = entry->state.next;
    ++entry->state.begun;
    entry->state.next = entry->state.Following(clock_->Now());
    entry->spent = entry->state.period == seconds(0);
    state = entry->state;
  }
  Store(entry->data, entry->key, state);
  return true;
}

void ActionSystem::End(const PeriodicPointer& entry) {
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  PeriodicState state;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsCurrent(entry)) return;
    entry->state.interrupted = boost::none;
    entry->state.begun = 0;
    state = entry->state;
  }
  if (entry->spent) {
    if (!entry->doneKey.empty()) entry->data.SetString(entry->doneKey, ToText(state));
    Remove(entry);
  } else {
    Store(entry->data, entry->key, state);
  }
  const std::lock_guard<std::mutex> lock(mutex_);
  entry->waiting = false;
  StartDue();
}

ActionResult ActionSystem::RunLogged(const OneShot& shot) {
  const ErrandScope errand(shot.errand);
  const std::string& label = shot.label;
  ModuleAction action = shot.action;
  std::list<RunningAction> entry;
  entry.push_back({label, clock_->Now(), shot.lane});
  const auto place = entry.begin();
  {
    const std::lock_guard<std::mutex> lock(runningMutex_);
    running_.splice(running_.end(), entry);
  }
  NORVIK_DETAIL(boost::format("Action %1% starts") % label);
  ActionResult result;
  try {
    result.response = Invoke(action);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Action %1% failed: %2%") % label % error.what());
    result.failure = *error.what() == '\0' ? UNKNOWN_EXCEPTION : error.what();
  } catch (...) {
    NORVIK_ERROR(boost::format("Action %1% failed with an %2%") % label % UNKNOWN_EXCEPTION);
    result.failure = UNKNOWN_EXCEPTION;
  }
  // A scan of the disk has freed hundreds of bytes for each file.
  if (shot.lane == Lane::Inventories) ReleaseFreeMemory();
  const std::lock_guard<std::mutex> lock(runningMutex_);
  running_.erase(place);
  return result;
}

std::vector<RunningAction> ActionSystem::Running() const {
  const std::lock_guard<std::mutex> lock(runningMutex_);
  return {running_.begin(), running_.end()};
}

boost::optional<DueAction> ActionSystem::Next() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  boost::optional<DueAction> next;
  const auto consider = [&](const std::string& label, system_clock::time_point time) {
    if (!next || time < next->time) next = DueAction{label, time};
  };
  if (!oneShots_.empty()) {
    const auto wait = oneShots_.begin()->first - clock_->Steady();
    consider(oneShots_.begin()->second.label,
             clock_->Now() + std::chrono::duration_cast<system_clock::duration>(wait));
  }
  for (const auto& [key, entry] : periodics_) {
    if (!entry->waiting) consider(entry->label, entry->state.next);
  }
  return next;
}

void ActionSystem::CheckClock() {
  {
    const std::lock_guard<std::mutex> stateLock(stateMutex_);
    StoreMoved(FollowTimeOfDay());
  }
  WarnOfLateLanes();
  const std::lock_guard<std::mutex> lock(mutex_);
  StartDue();
}

/// The time limits of tools, connections and programs differ, so nothing is ended for those that
/// wait.
void ActionSystem::WarnOfLateLanes() {
  for (const auto& late : threads_.TakeLate(clock_->Steady() - LATE)) {
    std::string longest;
    for (const RunningAction& action : Running()) {
      if (action.lane != late.lane) continue;
      longest = action.label;
      break;
    }
    NORVIK_WARNING(boost::format("All threads for %1% are taken, the longest by action %2%; %3% "
                                 "actions wait") %
                   NameOf(late.lane) % longest % std::to_string(late.waiting));
  }
}

/// Detects that the time of day was set, and returns the actions whose next time it moved.
std::vector<ActionSystem::PeriodicPointer> ActionSystem::FollowTimeOfDay() {
  const std::lock_guard<std::mutex> lock(mutex_);
  const auto now = clock_->Now();
  const auto steady = clock_->Steady();
  const auto expected =
      std::exchange(lastNow_, now) + (steady - std::exchange(lastSteady_, steady));
  const auto jump = std::chrono::duration_cast<seconds>(now - expected);
  if (jump > -CLOCK_TOLERANCE && jump < CLOCK_TOLERANCE) return {};
  NORVIK_INFORMATION(boost::format("The time of day has moved by %1% seconds: it was set, or the "
                                   "machine slept") %
                     std::to_string(jump.count()));
  std::vector<PeriodicPointer> moved;
  for (const auto& [key, entry] : periodics_) {
    PeriodicState& state = entry->state;
    // A time that was further away than a period before is intended and stays.
    if (state.period == seconds(0) || state.next > expected + state.period) continue;
    if (state.next <= now + state.period) continue;
    state.next -= state.period * ((state.next - now) / state.period);
    moved.push_back(entry);
  }
  return moved;
}

/// `stateMutex_` must be held.
void ActionSystem::StoreMoved(const std::vector<PeriodicPointer>& moved) {
  for (const auto& entry : moved) {
    PeriodicState state;
    {
      const std::lock_guard<std::mutex> lock(mutex_);
      if (!IsCurrent(entry)) continue;
      state = entry->state;
    }
    Store(entry->data, entry->key, state);
  }
}

/// Passes everything that is due to the threads. `mutex_` must be held.
void ActionSystem::StartDue() {
  if (stopped_) return;
  const auto end = oneShots_.upper_bound(clock_->Steady());
  for (auto next = oneShots_.begin(); next != end; next = oneShots_.erase(next)) {
    PostUnlessPending(std::move(next->second));
  }
  const auto now = clock_->Now();
  for (const auto& item : periodics_) {
    const PeriodicPointer& entry = item.second;
    if (entry->waiting || entry->state.next > now) continue;
    entry->waiting = true;
    const bool isPending = inventories_.Contain(entry->code, entry->action.parameters);
    auto inventory = isPending ? nullptr : inventories_.Add(entry->code);
    threads_.Post(entry->lane, clock_->Steady(), [this, entry, isPending, inventory]() mutable {
      RunPeriodic(entry, isPending, std::move(inventory));
    });
  }
  ArmTimer();
}

/// Sets the timer to the next due time. `mutex_` must be held.
void ActionSystem::ArmTimer() {
  if (stopped_) return;
  std::chrono::nanoseconds wait = LONGEST_WAIT;
  bool any = !oneShots_.empty();
  if (any) {
    wait = std::min<std::chrono::nanoseconds>(wait, oneShots_.begin()->first - clock_->Steady());
  }
  const auto now = clock_->Now();
  for (const auto& item : periodics_) {
    if (item.second->waiting) continue;
    any = true;
    if (item.second->state.next < now + wait) wait = item.second->state.next - now;
  }
  if (!any) {
    timer_.cancel();
    return;
  }
  timer_.expires_after(std::max(wait, std::chrono::nanoseconds(0)));
  timer_.async_wait([this](const boost::system::error_code& error) {
    if (!error) CheckClock();
  });
}

bool ActionSystem::StopWithin(std::chrono::milliseconds limit) {
  StopTimer();
  // Not on this thread: a running action may block the database for longer than the limit.
  boost::asio::post(threads_.Context(), [this] { ForgiveRunning(); });
  return threads_.StopWithin(limit);
}

/// The process may end in the middle of these runs, and not because of them.
void ActionSystem::ForgiveRunning() {
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  std::vector<std::pair<PeriodicPointer, PeriodicState>> running;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    for (const auto& [key, entry] : periodics_) {
      if (!entry->state.interrupted || entry->state.begun == 0) continue;
      running.emplace_back(entry, entry->state);
      --running.back().second.begun;
    }
  }
  for (const auto& [entry, state] : running) Store(entry->data, entry->key, state);
}

void ActionSystem::Stop() {
  StopTimer();
  threads_.Stop();
}

void ActionSystem::StopTimer() {
  const std::lock_guard<std::mutex> lock(mutex_);
  stopped_ = true;
  timer_.cancel();
}

}  // namespace Norvik::Host
