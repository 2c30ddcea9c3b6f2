#include "cli/rehearsal/RehearsedActions.h"

#include <algorithm>
#include <utility>

#include "host/actions/ActionLanes.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Cli {

using namespace Host;

using namespace Common;
using std::chrono::seconds;

namespace {

StartedAction Plain(StartedAction::Kind kind, unsigned int code, const std::string& name) {
  StartedAction started;
  started.kind = kind;
  started.code = code;
  started.name = name;
  return started;
}

StartedAction Periodic(StartedAction::Kind kind, unsigned int code, const ModuleAction& action,
                       const ActionTiming& timing) {
  StartedAction started = Plain(kind, code, action.name);
  started.period = timing.period;
  started.next = timing.next;
  return started;
}

}  // namespace

RehearsedActions::RehearsedActions(const AgentData& scheduleData)
    : stopped_(scheduleData, std::make_shared<Clock>(), 0) {
  stopped_.Stop();
}

RehearsedActions::~RehearsedActions() = default;

void RehearsedActions::SetActionFactory(ActionFactory factory) {
  stopped_.SetActionFactory(std::move(factory));
}

void RehearsedActions::Keep(StartedAction started) {
  const std::lock_guard<std::mutex> lock(mutex_);
  started_.push_back(std::move(started));
}

std::vector<StartedAction> RehearsedActions::Started() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return started_;
}

void RehearsedActions::AddSchedule(const Schedule& schedule) {
  StartedAction started = Plain(StartedAction::SCHEDULED, schedule.code, schedule.identifier);
  started.period = seconds(schedule.when.periodSeconds);
  started.next = schedule.when.NextTime();
  Keep(std::move(started));
  stopped_.AddSchedule(schedule);
}

ActionResponse RehearsedActions::RunAction(ModuleAction action) {
  Keep(Plain(StartedAction::RUN, ActionCodeOf(action.name), action.name));
  return stopped_.RunAction(std::move(action));
}

void RehearsedActions::QueueAction(ModuleAction action) {
  Keep(Plain(StartedAction::QUEUED, ActionCodeOf(action.name), action.name));
}

void RehearsedActions::RunOneShot(unsigned int code, ModuleAction action, seconds delay) {
  StartedAction started = Plain(StartedAction::ONCE, code, action.name);
  started.delay = std::max(delay, seconds(0));
  Keep(std::move(started));
  if (code != ACTION_FILE_INVENTORY_INIT) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  continuations_.push_back(std::move(action));
}

std::vector<ModuleAction> RehearsedActions::TakeContinuations() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return std::exchange(continuations_, {});
}

void RehearsedActions::CreatePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                      const ActionTiming& timing) {
  Keep(Periodic(StartedAction::PERIODIC, code, action, timing));
  stopped_.CreatePeriodic(code, std::move(action), data, timing);
}

void RehearsedActions::ReplacePeriodic(unsigned int code, ModuleAction action, AgentData& data,
                                       const ActionTiming& timing) {
  Keep(Periodic(StartedAction::REPLACED_PERIODIC, code, action, timing));
  stopped_.ReplacePeriodic(code, std::move(action), data, timing);
}

}  // namespace Norvik::Cli
