// Promises of IActionSystem: when and where actions run.
#include <atomic>
#include <future>
#include <thread>
#include <utility>

#include "conformance/Promises.h"

namespace Norvik::Conformance {

namespace {

using namespace Common;
using std::chrono::seconds;
using std::chrono::steady_clock;

constexpr unsigned int CODE = 60'000;
constexpr char RAN_INSIDE[] = "the action ran before the call that started it had returned";
void ExpectRun(Subject& subject, const std::function<bool()>& condition) {
  Expect(subject.Within(condition), "the action did not run " + subject.WithinText());
}

/// How long a handler waits for something that happens at once in a good host: less than what waits
/// for the handler.
std::chrono::milliseconds PatienceOfAHandler(const Subject& subject) {
  return std::chrono::milliseconds(subject.Options().patience) / 2;
}

/// An action that must not run inside the call that starts it.
class LaterAction {
 public:
  explicit LaterAction(const Subject& subject) : patience_(PatienceOfAHandler(subject)) {}

  using StartIt = std::function<void(ModuleAction)>;

  void Start(const StartIt& start) {
    state_->caller = std::this_thread::get_id();
    start(runs_->Action([state = state_, patience = patience_] {
      const bool isCaller = std::this_thread::get_id() == state->caller;
      const auto status = state->done.wait_for(isCaller ? seconds(0) : patience);
      if (status != std::future_status::ready) state->ranInside = true;
    }));
    state_->returned.set_value();
  }
  void ExpectRunLater(Subject& subject) const {
    ExpectRun(subject, [&] { return runs_->Count() > 0; });
    Expect(!state_->ranInside, RAN_INSIDE);
  }

 private:
  struct State {
    std::promise<void> returned;
    std::shared_future<void> done = returned.get_future().share();
    std::thread::id caller;
    std::atomic<bool> ranInside{false};
  };
  const std::chrono::milliseconds patience_;
  const std::shared_ptr<State> state_ = std::make_shared<State>();
  const std::shared_ptr<Runs> runs_ = Runs::Make();
};

void RunsAtOnce(Subject& subject) {
  const auto runs = Runs::Make();
  std::thread::id runner;
  ModuleAction action = runs->Action([&] { runner = std::this_thread::get_id(); });
  action.parameters.Set("value", 41u);
  action.handler = [count = action.handler](ActionParameters& parameters) {
    ActionResponse response = count(parameters);
    response.extra = parameters.Get<unsigned int>("value") + 1;
    return response;
  };
  const ActionResponse response = subject.Actions()->RunAction(action);
  Expect(runs->Count() == 1, "the handler ran " + std::to_string(runs->Count()) + " times");
  Expect(runner == std::this_thread::get_id(), "the handler ran on another thread");
  Expect(response.extra == 42, "the result is not the handler's response");
}

void LetsExceptionsOut(Subject& subject) {
  const auto failing = Runs::Make()->Action([] { throw std::out_of_range("of the handler"); });
  try {
    subject.Actions()->RunAction(failing);
  } catch (const std::out_of_range&) {
    return;
  }
  throw Broken("the handler's exception did not come out of RunAction");
}

void QueuedRunsLater(Subject& subject) {
  LaterAction action(subject);
  action.Start([&](auto queued) { subject.Actions()->QueueAction(std::move(queued)); });
  action.ExpectRunLater(subject);
}

void OneShotRunsLater(Subject& subject) {
  LaterAction action(subject);
  action.Start([&](auto once) { subject.Actions()->RunOneShot(CODE, once, seconds(0)); });
  action.ExpectRunLater(subject);
}

void OneShotFromAHandler(Subject& subject) {
  const auto action = std::make_shared<LaterAction>(subject);
  const std::weak_ptr<IActionSystem> actions = subject.Actions();
  subject.Actions()->QueueAction(Runs::Make()->Action([=] {
    action->Start([&](auto once) { actions.lock()->RunOneShot(CODE, once, seconds(0)); });
  }));
  action->ExpectRunLater(subject);
}

void OneShotKeepsItsDelay(Subject& subject) {
  const auto delay = std::make_shared<std::atomic<double>>(0);
  const auto runs = Runs::Make();
  const auto begun = steady_clock::now();
  const auto measure = [=] {
    if (runs->Count() > 0) return;
    *delay = std::chrono::duration<double>(steady_clock::now() - begun).count();
  };
  subject.Actions()->RunOneShot(CODE, runs->Action(measure), seconds(1));
  ExpectRun(subject, [&] { return runs->Count() > 0; });
  Expect(*delay >= 1,
         "the action ran after " + std::to_string(*delay) + " seconds, its delay is 1");
  subject.Wait(seconds(3));
  Expect(runs->Count() == 1, "the action ran again");
}

void QueueRunsEverything(Subject& subject) {
  constexpr unsigned int COUNT = 200;
  const auto sum = std::make_shared<std::atomic<unsigned int>>(0);
  const auto runs = Runs::Make();
  for (unsigned int i = 1; i <= COUNT; ++i) {
    ModuleAction action = runs->Action();
    action.parameters.Set("number", i);
    action.handler = [sum, count = action.handler](ActionParameters& parameters) {
      *sum += parameters.Get<unsigned int>("number");
      return count(parameters);
    };
    subject.Actions()->QueueAction(std::move(action));
  }
  subject.Within([&] { return runs->Count() >= static_cast<int>(COUNT); });
  subject.Wait(std::chrono::milliseconds(200));
  Expect(runs->Count() == static_cast<int>(COUNT) && *sum == COUNT * (COUNT + 1) / 2,
         "of " + std::to_string(COUNT) + " queued actions ran " + std::to_string(runs->Count()));
}

void ExceptionsEndNothing(Subject& subject) {
  for (int i = 0; i < 20; ++i) {
    const auto failing = Runs::Make()->Action([i] {
      if (i % 2 == 0) throw std::runtime_error("of a handler of the check");
      throw i;
    });
    subject.Actions()->QueueAction(failing);
    subject.Actions()->RunOneShot(CODE, failing, seconds(0));
  }
  const auto runs = Runs::Make();
  subject.Actions()->QueueAction(runs->Action());
  subject.Actions()->RunOneShot(CODE, runs->Action(), seconds(0));
  Expect(subject.Within([&] { return runs->Count() == 2; }),
         "after handlers that threw, other actions no longer ran");
}

void HandlersRunInParallel(Subject& subject) {
  const auto finished = std::make_shared<std::promise<void>>();
  const auto met = std::make_shared<std::atomic<bool>>(false);
  const auto begun = std::make_shared<std::atomic<bool>>(false);
  const auto longRuns = Runs::Make();
  subject.Actions()->QueueAction(longRuns->Action(
      [=, patience = PatienceOfAHandler(subject), done = finished->get_future().share()] {
        *begun = true;
        *met = done.wait_for(patience) == std::future_status::ready;
      }));
  ExpectRun(subject, [&] { return begun->load(); });
  const auto shortRuns = Runs::Make();
  subject.Actions()->QueueAction(shortRuns->Action([=] { finished->set_value(); }));
  Expect(subject.Within([&] { return longRuns->Count() == 1; }), "a handler did not end");
  Expect(*met, "a handler that waited kept another one from running");
}

}  // namespace

std::vector<Promise> ActionPromises() {
  return {
      {"run-at-once",
       "`RunAction` runs the handler on the calling thread and returns its response.", RunsAtOnce},
      {"run-throws", "`RunAction` lets the handler's exception out.", LetsExceptionsOut},
      {"queued-later", "A queued action never runs inside the call that queues it.",
       QueuedRunsLater},
      {"one-shot-later",
       "An action that is started once without a delay never runs inside the call that starts it.",
       OneShotRunsLater},
      {"one-shot-in-handler", "A handler may start an action once.", OneShotFromAHandler},
      {"one-shot-delay",
       "An action that is started once with a delay runs once, and not before its delay is over.",
       OneShotKeepsItsDelay},
      {"queue-complete",
       "The queue runs everything that is queued once, each action with its parameters.",
       QueueRunsEverything},
      {"exceptions-end-nothing", "After handlers that throw, other actions still run.",
       ExceptionsEndNothing},
      {"handlers-parallel", "A handler that takes long does not keep another one from running.",
       HandlersRunInParallel},
  };
}

}  // namespace Norvik::Conformance
