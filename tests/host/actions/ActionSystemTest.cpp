#include "host/actions/ActionSystem.h"

#include <future>
#include <mutex>

#include "host/actions/SerialActions.h"
#include "support/FakeActionClock.h"
#include "support/Steps.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

constexpr unsigned int CODE = 1041;
constexpr long START = 1'000'000;
constexpr long PERIOD = 100;
const std::string KEY = PeriodicKey(CODE);
const std::string TASK_KEY = std::string(SCHEDULE_KEY_PREFIX) + "task-1";

ActionTiming Timing(long period, long next) {
  return {seconds(period), system_clock::time_point(seconds(START + next))};
}

class LongWork {
 public:
  void Do() {
    const auto state = state_;  // a test may end before this does
    state->started.set_value();
    state->release.get_future().wait();
  }
  void WaitForStart() { state_->started.get_future().wait(); }
  void LetGo() { state_->release.set_value(); }

 private:
  struct State {
    std::promise<void> started;
    std::promise<void> release;
  };
  const std::shared_ptr<State> state_ = std::make_shared<State>();
};

struct ActionsUnderTest {
  ActionsUnderTest() { Start(); }

  void Start() {
    system_ = std::make_unique<ActionSystem>(Data(), clock_);
    system_->SetActionFactory([this](unsigned int, const ActionParameters&) { return Counting(); });
    system_->SetTaskReporter([this](const TaskResponseInfo& status) {
      reported_.push_back(std::to_string(status.status) + " " + status.requestId);
    });
  }
  /// Simulates a clean stop of the process, and a new start after a while.
  void Restart(long downTime) {
    system_.reset();
    clock_->Move(seconds(downTime));
    dataBase_.Reopen();
    Start();
  }
  /// Simulates the end of the process in the middle of the latest run of the task, and a new start.
  void Die() {
    system_.reset();
    Data().SetString(TASK_KEY, during_);
    Start();
  }
  void Schedule(long period, long next) {
    ActionParameters parameters;
    parameters.Set(COMMON_PARAMETER_REQUEST_ID, std::string("r1"));
    system_->AddSchedule({"task-1", CODE, parameters, {period, START + next}});
  }
  AgentData Data() const { return AgentData(dataBase_, "DATA"); }

  using Work = std::function<void()>;

  static ModuleAction Action(Work work) {
    ModuleAction action;
    action.name = "ACTION_OF_TEST";
    action.handler = [work](ActionParameters&) {
      work();
      return ActionResponse();
    };
    return action;
  }
  ModuleAction Counting() {
    return Action([this] {
      ++runs_;
      const std::lock_guard lock(duringMutex_);  // several of them may run at a time
      during_ = Stored(TASK_KEY);
    });
  }
  void RunOnce(Work work) { system_->RunOneShot(CODE, Action(work), seconds(0)); }
  void Create(unsigned int code, long period, long next, Work work) {
    AgentData data = Data();
    system_->CreatePeriodic(code, Action(work), data, Timing(period, next));
  }
  void CreateCounting(unsigned int code, long period, long next) {
    Create(code, period, next, [this] { ++runs_; });
  }
  void Replace(long period, long next) {
    AgentData data = Data();
    system_->ReplacePeriodic(CODE, Counting(), data, Timing(period, next));
  }
  /// Lets the time pass; returns how often the action ran since the last call.
  int RunsWithin(long time) {
    clock_->Move(seconds(time));
    system_->CheckClock();
    system_->WaitIdle();
    return runs_.exchange(0);
  }
  std::string Stored(const std::string& key) const {
    return Data().GetOptionalString(key).get_value_or("none");
  }

  TestDatabase dataBase_;
  LogCapture log_;
  std::shared_ptr<FakeActionClock> clock_ = std::make_shared<FakeActionClock>(START);
  std::atomic<int> runs_{0};
  std::mutex duringMutex_;
  std::string during_;  ///< the state of the task during its latest run
  TextList reported_;
  std::unique_ptr<ActionSystem> system_;
};

struct ActionSystemTest : testing::Test, ActionsUnderTest {};

TEST_F(ActionSystemTest, AOneShotRunsOnceAfterItsDelayWithItsParameters) {
  wxString text;
  ModuleAction action = Counting();
  action.handler = [&, count = action.handler](ActionParameters& parameters) {
    text = parameters.Get<wxString>("name");
    return count(parameters);
  };
  action.parameters.Set("name", wxString("value"));
  system_->RunOneShot(CODE, action, seconds(10));
  EXPECT_EQ(RunsWithin(9), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(text, "value");
  EXPECT_EQ(RunsWithin(1000), 0);
}

TEST_F(ActionSystemTest, AnActionWithoutDelayIsWaitedForAndADelayedOneIsNot) {
  RunOnce([this] {
    system_->RunOneShot(CODE, Counting(), seconds(0));
    system_->RunOneShot(CODE, Counting(), seconds(60));
    system_->QueueAction(Counting());
  });
  system_->WaitIdle();
  EXPECT_EQ(runs_, 2);
}

TEST_F(ActionSystemTest, RunsOnTheCallingThreadAndLetsTheExceptionOut) {
  std::thread::id runner;
  system_->RunAction(Action([&] { runner = std::this_thread::get_id(); }));
  EXPECT_EQ(runner, std::this_thread::get_id());
  const auto failing = Action([] { throw std::logic_error("x"); });
  EXPECT_THROW(system_->RunAction(failing), std::logic_error);
}

TEST_F(ActionSystemTest, AnExceptionOfAHandlerIsLoggedWithItsCodeAndTheThreadsContinue) {
  for (std::size_t i = 0; i < 2 * ActionSystem::THREADS; ++i) {
    RunOnce([] { throw std::runtime_error("broken"); });
    RunOnce([] { throw 7; });
  }
  RunOnce([this] { ++runs_; });
  EXPECT_EQ(RunsWithin(0), 1);
  EXPECT_THAT(log_.Texts(Logger::LEVEL_ERROR),
              Contains(HasSubstr("1041 ACTION_OF_TEST failed: broken")));
  EXPECT_EQ(log_.Texts(Logger::LEVEL_ERROR).size(), 4 * ActionSystem::THREADS);
}

TEST_F(ActionSystemTest, AnActionWithoutAHandlerReturnsADefaultResponseWithOneWarning) {
  const ActionResponse response = system_->RunAction(ModuleAction());
  EXPECT_FALSE(response.success);
  EXPECT_EQ(log_.Texts(Logger::LEVEL_WARNING).size(), 1u);
}

/// Times are in seconds. Times of the clock and first times count from the start.
struct Timetable : StepsTest, ActionsUnderTest {
  Timetable() {
    Verb("once", [this](long delay) { system_->RunOneShot(CODE, Counting(), seconds(delay)); });
    Verb("create", &ActionsUnderTest::CreateCounting);
    Verb("replace", &ActionsUnderTest::Replace);
    Verb("schedule", &ActionsUnderTest::Schedule);
    Verb("keep", [this](const std::string& name) { system_->KeepSchedules({name}); });
    Verb("die", &ActionsUnderTest::Die);
    Verb("reported", [this] { return reported_; });
    Verb("restart after", &ActionsUnderTest::Restart);
    Verb("set clock", [this](long time) { clock_->SetTimeOfDay(START + time); });
    Verb("store", [this](const std::string& state) { Data().SetString(KEY, state); });
    Verb("resume", [this] {
      AgentData data = Data();
      system_->ResumePeriodic(CODE, Counting(), data);
    });
    Verb("runs within", &ActionsUnderTest::RunsWithin);
    Verb("stored", [this](const std::string& key) { return Stored(key); });
    Verb("next", [this] { return system_->Next() ? system_->Next()->label : ""; });
    Verb("last line", [this](std::size_t count, const std::string& text) {
      const auto lines = log_.Texts(Logger::LEVEL_INFORMATION);
      EXPECT_EQ(lines.size(), count);
      EXPECT_THAT(lines.back(), HasSubstr(text));
    });
  }
};

TEST_P(Timetable, IsKeptWhateverHappensToProcessAndClock) { Follow(); }

INSTANTIATE_TEST_SUITE_P(Rows, Timetable, ValuesIn(DataOf("host/actions/timetables.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

TEST_F(ActionSystemTest, ARunIsMarkedInTheStateAsLongAsItLasts) {
  std::string during;
  Create(CODE, PERIOD, 0, [&] { during = Stored(KEY); });
  system_->WaitIdle();
  EXPECT_EQ(during, "100 1000100 1000000");
  EXPECT_EQ(Stored(KEY), "100 1000100");
}

TEST_F(ActionSystemTest, AHandlerMayInstallItsOwnActionAgain) {
  for (const bool replace : {true, false}) {
    AgentData data = Data();
    const long now = system_clock::to_time_t(clock_->Now()) - START;
    const auto again = [&] { replace ? Replace(0, now + 30) : CreateCounting(CODE, 0, now + 30); };
    system_->ReplacePeriodic(CODE, Action(again), data, Timing(0, now));
    system_->WaitIdle();
    EXPECT_EQ(Stored(KEY), "0 " + std::to_string(START + now + 30)) << replace;
    EXPECT_EQ(RunsWithin(31), 1) << replace;
  }
}

TEST_F(ActionSystemTest, RunsOfOneActionDoNotOverlap) {
  LongWork first;
  std::atomic<int> running{0};
  std::atomic<int> most{0};
  const auto work = [&] {
    most = std::max<int>(most, ++running);
    if (++runs_ == 1) first.Do();
    --running;
  };
  Create(CODE, PERIOD, 0, work);
  first.WaitForStart();
  for (int i = 0; i < 5; ++i) {
    clock_->Move(seconds(PERIOD));
    system_->CheckClock();
  }
  first.LetGo();
  system_->WaitIdle();
  EXPECT_EQ(most, 1);
  EXPECT_EQ(runs_, 2);  // the long run, and one for all that became due during it
}

TEST_F(ActionSystemTest, AStoppedSystemStartsNothingAndLeavesPeriodicActionsDue) {
  system_ = std::make_unique<ActionSystem>(Data(), clock_, 1);
  LongWork first;
  RunOnce([&] { first.Do(); });
  CreateCounting(CODE, PERIOD, 0);
  RunOnce([this] { ++runs_; });
  first.WaitForStart();
  auto stopping = std::async(std::launch::async, [&] { system_->Stop(); });
  EXPECT_EQ(stopping.wait_for(milliseconds(50)), std::future_status::timeout);
  first.LetGo();
  stopping.wait();
  system_->RunOneShot(CODE, Counting(), seconds(0));
  system_->WaitIdle();
  EXPECT_EQ(runs_, 0);
  EXPECT_EQ(Stored(KEY), "100 1000000");
}

TEST_F(ActionSystemTest, AStopGivesUpOnWhatDoesNotEndAndCanNameIt) {
  LongWork endless;
  RunOnce([&] { endless.Do(); });
  endless.WaitForStart();
  EXPECT_FALSE(system_->StopWithin(milliseconds(20)));
  system_->RunOneShot(CODE, Counting(), seconds(0));
  ASSERT_EQ(system_->Running().size(), 1u);
  EXPECT_EQ(system_->Running()[0].label, "1041 ACTION_OF_TEST");
  EXPECT_EQ(system_->Running()[0].since, clock_->Now());
  endless.LetGo();
  EXPECT_TRUE(system_->StopWithin(seconds(60)));
  EXPECT_EQ(runs_, 0);
  EXPECT_TRUE(system_->Running().empty());
}

TEST_F(ActionSystemTest, AnAnswerIsGivenForATaskThatSaysSomethingBeforeTheTaskEnds) {
  ActionResponse listed, refused, done;
  listed.table.AddNewRow();
  refused.text = "no";
  done.success = true;
  TextList answers;
  system_->SetAnswerReporter([&](const TaskAnswer& answer) {
    const ActionResult& result = answer.result;
    answers.push_back(answer.taskIdentifier + " " + answer.requestId + " " +
                      std::to_string(answer.code) + result.failure +
                      result.response.text.get_value_or(""));
    EXPECT_EQ(Stored(SCHEDULE_KEY_PREFIX + answer.taskIdentifier), "0 1000000 1000000");
  });
  const auto run = [&](const std::string& task, const ActionHandler& handler) {
    ModuleAction action = Action({});
    action.handler = handler;
    ActionParameters parameters;
    parameters.Set(COMMON_PARAMETER_REQUEST_ID, std::string("r"));
    action.parameters = parameters;
    system_->SetActionFactory([&](unsigned int, const ActionParameters&) { return action; });
    system_->AddSchedule({task, CODE, parameters, {0, START}});
    system_->RunOneShot(CODE, action, seconds(0));
    AgentData data = Data();
    system_->ReplacePeriodic(CODE, action, data, Timing(PERIOD, 0));
    system_->WaitIdle();
  };
  run("silent", [](auto&) { return ActionResponse(); });
  for (const ActionResponse& response : {listed, refused, done}) {
    run("says", [response](auto&) { return response; });
  }
  run("throws", [](auto&) -> ActionResponse { throw std::runtime_error("broken"); });
  run("throws", [](auto&) -> ActionResponse { throw 7; });
  EXPECT_THAT(answers, ElementsAre("says r 1041", "says r 1041no", "says r 1041",
                                   "throws r 1041broken", "throws r 1041unknown exception"));
}

TEST_F(ActionSystemTest, ATaskThatAStopDoesNotWaitForHasNotKilledTheProcess) {
  LongWork endless;
  system_->SetActionFactory(
      [&](unsigned int, const ActionParameters&) { return Action([&] { endless.Do(); }); });
  Schedule(0, 0);
  endless.WaitForStart();
  EXPECT_EQ(Stored(TASK_KEY), "0 1000000 1000000");
  EXPECT_FALSE(system_->StopWithin(milliseconds(0)));
  for (int i = 0; i < 2000 && Stored(TASK_KEY) != "0 1000000 1000000 x0"; ++i) {
    std::this_thread::sleep_for(milliseconds(10));
  }
  EXPECT_EQ(Stored(TASK_KEY), "0 1000000 1000000 x0");
  endless.LetGo();
}

TEST_F(ActionSystemTest, ActionsOfOneLaneKeepNoOtherOneFromRunning) {
  std::promise<void> release;
  const auto released = release.get_future().share();
  const auto endless = Action([released] { released.wait(); });
  for (const Lane lane : {Lane::Inventories, Lane::Tasks, Lane::Users, Lane::Sessions}) {
    std::promise<void> ran;
    system_->RunInLane(lane, CODE, Action([&] { ran.set_value(); }));
    EXPECT_EQ(ran.get_future().wait_for(seconds(20)), std::future_status::ready) << NameOf(lane);
    for (std::size_t i = 0; i <= ActionSystem::THREADS; ++i) {
      system_->RunInLane(lane, CODE, endless);
    }
  }
  std::promise<void> fetched;
  system_->RunOneShot(ActionCodeOf("ACTION_GET_PENDING_TASKS"),
                      Action([&] { fetched.set_value(); }), seconds(0));
  EXPECT_EQ(fetched.get_future().wait_for(seconds(20)), std::future_status::ready);
  for (int i = 0; i < 3; ++i) {
    clock_->Move(seconds(61));
    system_->CheckClock();
  }
  EXPECT_THAT(
      log_.Texts(Logger::LEVEL_WARNING),
      ElementsAre(HasSubstr("inventories are taken, the longest by action 1041"),
                  HasSubstr("tasks of the server are taken"), HasSubstr("messages of users"),
                  HasSubstr("sessions of users are taken")));
  release.set_value();
}

/// The actions that run if the second is requested while the first does.
std::string RunsOf(ActionSystem& system, const std::string& actions) {
  std::istringstream words(actions);
  unsigned int first = 0, second = 0;
  std::string origin, runs;
  words >> first >> second >> origin;
  const auto make = [&runs](unsigned int code, ActionsUnderTest::Work work) {
    return ActionsUnderTest::Action([&runs, code, work] {
      runs += std::to_string(code) + " ";
      work();
    });
  };
  std::promise<void> end;
  std::promise<void> begun;
  system.RunOneShot(first,
                    make(first,
                         [&] {
                           begun.set_value();
                           end.get_future().wait();
                         }),
                    seconds(0));
  begun.get_future().wait();
  ModuleAction action = make(second, [] {});
  if (!origin.empty()) action.parameters.Set(COMMON_PARAMETER_REQUEST_ID, origin);
  system.RunOneShot(second, action, seconds(0));
  end.set_value();
  system.WaitIdle();
  system.RunOneShot(second, make(second, [&] { runs += "after"; }), seconds(0));
  system.WaitIdle();
  return runs;
}

TEST_F(ActionSystemTest, AnInventoryThatAPendingOneContainsDoesNotRun) {
  const std::pair<const char*, const char*> rows[] = {
      {"1071 1036", "1071 1036 after"},         {"1071 1071", "1071 1071 after"},
      {"1036 1036", "1036 1036 after"},         {"1036 1071", "1036 1071 1071 after"},
      {"1071 1036 r1", "1071 1036 1036 after"}, {"1047 1047", "1047 1047 1047 after"}};
  for (const auto& [actions, runs] : rows) EXPECT_EQ(RunsOf(*system_, actions), runs) << actions;
}

std::string LaneNamed(const std::string& action) { return NameOf(LaneOf(ActionCodeOf(action))); }

TEST(ActionLanes, InventoriesAndQuestionsAboutUsersHaveTheirOwn) {
  ExpectRows(DataOf("host/actions/lanes.json"), LaneNamed);
}

TEST_F(ActionSystemTest, SerialActionsRunInTheirOrderOneAtATime) {
  const std::shared_ptr<ActionSystem> system(std::move(system_));
  const auto serial = std::make_shared<SerialActions>(system);
  std::string order;  // needs no lock if the actions run one at a time
  std::string done;
  std::promise<void> release;
  for (const char* text : {"a", "b", "x", "c"}) {
    const auto work = [&, text] {
      if (*text == 'a') release.get_future().wait();
      order += text;
      if (*text == 'x') throw std::runtime_error("broken");
    };
    serial->Add(CODE, Action(work), [&, text] { done += text; });
  }
  system->QueueAction(Action([&] { release.set_value(); }));
  system->WaitIdle();
  EXPECT_EQ(order, "abxc");
  EXPECT_EQ(done, "abxc");
}

TEST_F(ActionSystemTest, ASystemWithARealClockFiresByItself) {
  ActionSystem real(Data());
  std::promise<void> fired;
  real.RunOneShot(CODE, Action([&] { fired.set_value(); }), seconds(1));
  EXPECT_EQ(fired.get_future().wait_for(seconds(20)), std::future_status::ready);
}

std::string ReadBack(const std::string& text) {
  const auto state = ParsePeriodicState(text);
  return state ? ToText(*state) : "none";
}

TEST(PeriodicState, ReadsBackWhatItWritesAndRefusesEverythingElse) {
  ExpectRows(DataOf("host/actions/states.json"), ReadBack);
}

}  // namespace
