#include "host/actions/ActionSystem.h"

#include <algorithm>
#include <boost/format.hpp>
#include <exception>
#include <utility>

#include "common/log/Logger.h"

namespace Norvik::Host {

using namespace Common;
using std::chrono::seconds;
using std::chrono::system_clock;

/// A periodic action. `state`, `waiting` and `spent` are guarded by the system's `mutex_`; the rest
/// does not change.
struct ActionSystem::Periodic {
  Periodic(std::string keyText, std::string labelText, ModuleAction runnable, AgentData store,
           const ActionTiming& timing)
      : key(std::move(keyText)),
        label(std::move(labelText)),
        action(std::move(runnable)),
        data(std::move(store)) {
    state.period = std::max(timing.period, seconds(0));
    state.next = timing.next;
  }

  const std::string key;
  const std::string label;
  const ModuleAction action;
  AgentData data;
  std::string doneKey;  ///< empty for a schedule, whose state is removed after its only run
  PeriodicState state;
  bool waiting = false;  ///< for a thread, or for the end of its run
  bool spent = false;    ///< its only run has started
};

namespace {

/// Limits the wait, since the time of day may be set at any time and the steady clock may stop
/// while the machine sleeps.
constexpr seconds LONGEST_WAIT(30);
constexpr seconds LONGEST_DELAY(std::chrono::hours(24 * 3650));
/// Smaller differences between the two clocks are normal corrections.
constexpr seconds CLOCK_TOLERANCE(60);

std::string LabelOf(unsigned int code, const ModuleAction& action) {
  return std::to_string(code) + (action.name.empty() ? "" : " " + action.name);
}

ActionResponse Invoke(ModuleAction& action) {
  if (action.handler) return action.handler(action.parameters);
  NORVIK_WARNING("An action has no handler; nothing runs");
  return {};
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

ActionResponse ActionSystem::RunAction(ModuleAction action) { return Invoke(action); }

void ActionSystem::QueueAction(ModuleAction action) {
  threads_.Post([this, action = std::move(action)] { RunLogged(action.name, action); });
}

void ActionSystem::RunOneShot(unsigned int code, ModuleAction action, seconds delay) {
  OneShot shot{LabelOf(code, action), std::move(action)};
  if (delay <= seconds(0)) {
    threads_.Post([this, shot = std::move(shot)] { RunLogged(shot.label, shot.action); });
    return;
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
  const auto entry = std::make_shared<Periodic>(
      SCHEDULE_KEY_PREFIX + schedule.identifier, std::move(label), std::move(action), scheduleData_,
      ActionTiming{seconds(schedule.when.periodSeconds), schedule.when.NextTime()});

  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  if (const auto known = Find(entry->key)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    const bool same = known->state.period == entry->state.period;
    if (same && known->state.next >= entry->state.next) return;
  } else if (const auto stored = Load(entry->data, entry->key)) {
    const bool same = stored->period == entry->state.period;
    if (same && stored->next >= entry->state.next) RestoreState(*entry);
  }
  Install(entry);
}

ActionSystem::PeriodicPointer ActionSystem::MakePeriodic(unsigned int code, ModuleAction action,
                                                         const AgentData& data,
                                                         const ActionTiming& timing) {
  std::string label = LabelOf(code, action);
  auto entry = std::make_shared<Periodic>(PeriodicKey(code), std::move(label), std::move(action),
                                          data, timing);
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

void ActionSystem::RunPeriodic(const PeriodicPointer& entry) {
  if (!Begin(entry)) return;
  RunLogged(entry->label, entry->action);
  End(entry);
}

bool ActionSystem::Begin(const PeriodicPointer& entry) {
  const std::lock_guard<std::mutex> stateLock(stateMutex_);
  PeriodicState state;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!IsCurrent(entry)) return false;
    entry->state.interrupted = entry->state.next;
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

void ActionSystem::RunLogged(const std::string& label, ModuleAction action) {
  std::list<RunningAction> entry;
  entry.push_back({label, clock_->Now()});
  const auto place = entry.begin();
  {
    const std::lock_guard<std::mutex> lock(runningMutex_);
    running_.splice(running_.end(), entry);
  }
  NORVIK_DETAIL(boost::format("Action %1% starts") % label);
  try {
    Invoke(action);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Action %1% failed: %2%") % label % error.what());
  } catch (...) {
    NORVIK_ERROR(boost::format("Action %1% failed with an unknown exception") % label);
  }
  const std::lock_guard<std::mutex> lock(runningMutex_);
  running_.erase(place);
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
  const std::lock_guard<std::mutex> lock(mutex_);
  StartDue();
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
    threads_.Post([this, shot = std::move(next->second)] { RunLogged(shot.label, shot.action); });
  }
  const auto now = clock_->Now();
  for (const auto& item : periodics_) {
    const PeriodicPointer& entry = item.second;
    if (entry->waiting || entry->state.next > now) continue;
    entry->waiting = true;
    threads_.Post([this, entry] { RunPeriodic(entry); });
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
  return threads_.StopWithin(limit);
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
