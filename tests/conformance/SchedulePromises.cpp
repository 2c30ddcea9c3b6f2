// Promises of IActionSystem: periodic actions and schedules, also over a restart.
#include "conformance/Promises.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;
using std::chrono::seconds;
using std::chrono::system_clock;

constexpr unsigned int CODE = 60'001;
constexpr seconds HOUR(3600);
/// So long it is watched that an action does not run.
constexpr seconds WATCH(3);

/// Schedules count in whole seconds.
system_clock::time_point In(seconds time) {
  return std::chrono::time_point_cast<seconds>(system_clock::now()) + time;
}

void ExpectRuns(Subject& subject, const std::shared_ptr<Runs>& runs, int count, const char* what) {
  subject.Within([&] { return runs->Count() >= count; });
  if (runs->Count() == count) subject.Wait(WATCH);
  const int ran = runs->Count();
  Expect(ran == count, std::string(what) + " ran " + std::to_string(ran) +
                           (ran == 1 ? " time, not " : " times, not ") + std::to_string(count));
}

void Create(Subject& subject, const std::shared_ptr<Runs>& runs, const ActionTiming& timing) {
  AgentData data = subject.Data();
  subject.Actions()->CreatePeriodic(CODE, runs->Action(), data, timing);
}

void Replace(Subject& subject, const std::shared_ptr<Runs>& runs, const ActionTiming& timing) {
  AgentData data = subject.Data();
  subject.Actions()->ReplacePeriodic(CODE, runs->Action(), data, timing);
}

void Repeats(Subject& subject) {
  const auto runs = Runs::Make();
  const auto first = In(seconds(1));
  Create(subject, runs, {seconds(1), first});
  const bool isEnough = subject.Within([&] { return runs->Count() >= 3; });
  Expect(isEnough,
         "it ran " + std::to_string(runs->Count()) + " times " + subject.WithinText() + ", not 3");
  auto earliest = first;
  for (const auto& time : runs->Times()) {
    Expect(time >= earliest, "it ran before its time");
    earliest += seconds(1);
  }
}

void IsNotLost(Subject& subject) {
  const auto runs = Runs::Make();
  const auto next = In(seconds(4));
  Create(subject, runs, {HOUR, next});
  subject.Restart();
  Create(subject, runs, {HOUR, In(HOUR)});
  ExpectRuns(subject, runs, 1, "the action that was pending before the restart");
  Expect(runs->Times().front() >= next, "it ran before its time");
}

void IsNotRepeated(Subject& subject) {
  const auto runs = Runs::Make();
  Create(subject, runs, {HOUR, In(seconds(0))});
  ExpectRuns(subject, runs, 1, "before the restart the action");
  subject.Restart();
  Create(subject, runs, {HOUR, In(seconds(0))});
  ExpectRuns(subject, runs, 1, "with the restart the action");
}

void OnceIsOnce(Subject& subject) {
  const auto runs = Runs::Make();
  Replace(subject, runs, {seconds(0), In(seconds(1))});
  ExpectRuns(subject, runs, 1, "the action with the period 0");
}

void OnceIsRemembered(Subject& subject) {
  const auto runs = Runs::Make();
  const auto time = In(seconds(0));
  Replace(subject, runs, {seconds(0), time});
  ExpectRuns(subject, runs, 1, "before the restart the action");
  subject.Restart();
  Replace(subject, runs, {seconds(0), time});
  ExpectRuns(subject, runs, 1, "with the restart the action");
}

void CreateKeepsTheTime(Subject& subject) {
  const auto runs = Runs::Make();
  Create(subject, runs, {HOUR, In(seconds(2))});
  Create(subject, runs, {HOUR, In(HOUR)});
  ExpectRuns(subject, runs, 1, "the action that was created first");
}

void ReplaceChangesTheTime(Subject& subject) {
  const auto runs = Runs::Make();
  Create(subject, runs, {HOUR, In(HOUR)});
  Replace(subject, runs, {HOUR, In(seconds(1))});
  ExpectRuns(subject, runs, 1, "the action that was replaced");
  Replace(subject, runs, {HOUR, In(seconds(2))});
  Replace(subject, runs, {HOUR, In(HOUR)});
  ExpectRuns(subject, runs, 1, "the action that was put off");
}

/// Lets the module make counting actions, for the schedules.
std::shared_ptr<Runs> CountedActions(Subject& subject) {
  auto runs = Runs::Make();
  subject.makeAction = [runs](unsigned int) { return runs->Action(); };
  return runs;
}

void Add(Subject& subject, const char* identifier, seconds period, system_clock::time_point next) {
  subject.Actions()->AddSchedule(
      {identifier, CODE, {}, {period.count(), system_clock::to_time_t(next)}});
}

void ScheduleContinues(Subject& subject) {
  const auto runs = CountedActions(subject);
  const auto time = In(seconds(0));
  Add(subject, "task-1", HOUR, time);
  ExpectRuns(subject, runs, 1, "the task");
  Add(subject, "task-1", HOUR, time);
  ExpectRuns(subject, runs, 1, "the task that was added again");
  subject.Restart();
  Add(subject, "task-1", HOUR, time);
  ExpectRuns(subject, runs, 1, "the task that was added again after a restart");
}

void ScheduleIsReplaced(Subject& subject) {
  const auto runs = CountedActions(subject);
  Add(subject, "task-1", HOUR, In(HOUR));
  Add(subject, "task-1", 2 * HOUR, In(seconds(1)));
  ExpectRuns(subject, runs, 1, "the task with another period");
  Add(subject, "task-2", HOUR, In(seconds(2)));
  Add(subject, "task-2", HOUR, In(HOUR));
  ExpectRuns(subject, runs, 1, "the task with a later time");
}

}  // namespace

std::vector<Promise> SchedulePromises() {
  return {
      {"periodic-repeats", "A periodic action runs again after each period, never before its time.",
       Repeats},
      {"periodic-not-lost", "A periodic action that is pending over a restart runs at its time.",
       IsNotLost},
      {"periodic-not-twice",
       "A periodic action that has run is not run again by a restart, but after its period.",
       IsNotRepeated},
      {"once-is-once", "An action with the period 0 runs once.", OnceIsOnce},
      {"once-remembered",
       "An action with the period 0 that has run does not run again when it is requested again "
       "after a restart.",
       OnceIsRemembered},
      {"create-keeps", "`CreatePeriodic` of an action that exists keeps its next time.",
       CreateKeepsTheTime},
      {"replace-changes", "`ReplacePeriodic` gives an action that exists another time.",
       ReplaceChangesTheTime},
      {"schedule-continues",
       "`AddSchedule` of a known identifier with the same period and time changes nothing, also "
       "after a restart.",
       ScheduleContinues},
      {"schedule-replaced",
       "`AddSchedule` of a known identifier with another period or a later time replaces it.",
       ScheduleIsReplaced},
  };
}

}  // namespace Norvik::Conformance
