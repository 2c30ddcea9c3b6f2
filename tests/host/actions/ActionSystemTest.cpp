#include "host/actions/ActionSystem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>

#include "host/actions/SerialActions.h"
#include "support/FakeActionClock.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;
using std::chrono::seconds;
using std::chrono::system_clock;
using testing::Contains;
using testing::HasSubstr;

constexpr unsigned int CODE = 1036;
constexpr long START = 1'000'000;
constexpr long PERIOD = 100;

ActionTiming Timing(long period, long next) {
  return {seconds(period), system_clock::time_point(seconds(next))};
}

class ActionSystemTest : public testing::Test {
 protected:
  ActionSystemTest() { Start(); }

  void Start() {
    system_ = std::make_unique<ActionSystem>(Data(), clock_);
    system_->SetActionFactory([this](unsigned int, const ActionParameters&) { return Counting(); });
  }
  /// What a new start of the process finds, behind a clean stop.
  void Restart() {
    system_.reset();
    dataBase_.Reopen();
    Start();
  }
  AgentData Data() const { return AgentData(dataBase_, "DATA"); }

  static ModuleAction Action(ActionHandler handler) {
    ModuleAction action;
    action.name = "ACTION_OF_TEST";
    action.handler = std::move(handler);
    return action;
  }
  ModuleAction Counting() {
    return Action([this](ActionParameters&) {
      ++runs_;
      return ActionResponse();
    });
  }
  void Create(long period, long next) {
    AgentData data = Data();
    system_->CreatePeriodic(CODE, Counting(), data, Timing(period, next));
  }
  void Replace(long period, long next) {
    AgentData data = Data();
    system_->ReplacePeriodic(CODE, Counting(), data, Timing(period, next));
  }
  void AddSchedule(long period, long next) {
    Schedule schedule;
    schedule.identifier = "task-1";
    schedule.code = CODE;
    schedule.when = {period, next};
    system_->AddSchedule(schedule);
  }
  /// Lets the time pass; answers how often the action ran in it.
  int RunsWithin(long time) {
    const int before = runs_;
    clock_->Move(seconds(time));
    system_->LookAtClock();
    system_->WaitIdle();
    return runs_ - before;
  }
  std::string Stored(const std::string& key = PeriodicKey(CODE)) const {
    return Data().GetOptionalString(key).get_value_or("none");
  }

  TestDatabase dataBase_;
  LogCapture log_;
  std::shared_ptr<FakeActionClock> clock_ = std::make_shared<FakeActionClock>(START);
  std::atomic<int> runs_{0};
  std::unique_ptr<ActionSystem> system_;
};

TEST_F(ActionSystemTest, AOneShotRunsOnceBehindItsDelayWithItsParameters) {
  wxString text;
  ModuleAction action = Action([&](ActionParameters& parameters) {
    text = parameters.Get<wxString>("name");
    ++runs_;
    return ActionResponse();
  });
  action.parameters.Set("name", wxString("value"));
  system_->RunOneShot(CODE, action, seconds(10));
  EXPECT_EQ(RunsWithin(9), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(text, "value");
  EXPECT_EQ(RunsWithin(1000), 0);
}

TEST_F(ActionSystemTest, AnActionWithoutDelayIsWaitedForAndADelayedOneIsNot) {
  system_->RunOneShot(CODE, Action([this](ActionParameters&) {
                        system_->RunOneShot(CODE, Counting(), seconds(0));
                        system_->RunOneShot(CODE, Counting(), seconds(60));
                        system_->QueueAction(Counting());
                        return ActionResponse();
                      }),
                      seconds(0));
  system_->WaitIdle();
  EXPECT_EQ(runs_, 2);
}

TEST_F(ActionSystemTest, ADelayDoesNotFollowTheTimeOfDay) {
  system_->RunOneShot(CODE, Counting(), seconds(10));
  clock_->SetTimeOfDay(START + 1000);
  EXPECT_EQ(RunsWithin(0), 0);
  clock_->SetTimeOfDay(START - 1000);
  EXPECT_EQ(RunsWithin(10), 1);
}

TEST_F(ActionSystemTest, RunsOnTheCallingThreadAndLetsTheExceptionOut) {
  std::thread::id runner;
  system_->RunAction(Action([&](ActionParameters&) {
    runner = std::this_thread::get_id();
    return ActionResponse();
  }));
  EXPECT_EQ(runner, std::this_thread::get_id());
  const auto failing =
      Action([](ActionParameters&) -> ActionResponse { throw std::logic_error("x"); });
  EXPECT_THROW(system_->RunAction(failing), std::logic_error);
}

TEST_F(ActionSystemTest, WhatAHandlerLetsEscapeIsLoggedWithItsCodeAndTheThreadsLiveOn) {
  for (std::size_t i = 0; i < 2 * ActionSystem::THREADS; ++i) {
    system_->RunOneShot(CODE, Action([](ActionParameters&) -> ActionResponse {
                          throw std::runtime_error("broken");
                        }),
                        seconds(0));
    system_->RunOneShot(CODE, Action([](ActionParameters&) -> ActionResponse { throw 7; }),
                        seconds(0));
  }
  system_->RunOneShot(CODE, Counting(), seconds(0));
  system_->WaitIdle();
  EXPECT_EQ(runs_, 1);
  EXPECT_THAT(log_.Texts(Logger::LEVEL_ERROR),
              Contains(HasSubstr("1036 ACTION_OF_TEST failed: broken")));
  EXPECT_EQ(log_.Texts(Logger::LEVEL_ERROR).size(), 4 * ActionSystem::THREADS);
}

TEST_F(ActionSystemTest, AnActionWithoutAHandlerIsAnsweredByADefaultResponseAndOneWarning) {
  const ActionResponse response = system_->RunAction(ModuleAction());
  EXPECT_FALSE(response.success);
  EXPECT_EQ(log_.Texts(Logger::LEVEL_WARNING).size(), 1u);
}

TEST_F(ActionSystemTest, APeriodicActionRunsAtItsTimesAndMissedOnesAreMadeUpForByOneRun) {
  Create(PERIOD, START + 50);
  EXPECT_EQ(RunsWithin(49), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(RunsWithin(99), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(RunsWithin(5 * PERIOD + 10), 1);
  EXPECT_EQ(RunsWithin(PERIOD - 10), 1);  // back on its own times
  EXPECT_EQ(Stored(), "100 1000850");
}

TEST_F(ActionSystemTest, APeriodicActionGoesOnAfterARestart) {
  Create(PERIOD, START + 50);
  EXPECT_EQ(RunsWithin(60), 1);
  Restart();
  Create(7, START + 1);  // the stored one goes on: neither this time nor this period counts
  EXPECT_EQ(RunsWithin(89), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  Create(7, START + 1);  // has one in this process
  EXPECT_EQ(RunsWithin(99), 0);
  EXPECT_EQ(RunsWithin(1), 1);
}

TEST_F(ActionSystemTest, ARunThatWasMissedWhileTheProcessWasDownIsMadeUpForOnce) {
  Create(PERIOD, START + 50);
  system_.reset();
  clock_->Move(seconds(10 * PERIOD));
  Restart();
  Create(PERIOD, START + 50);
  system_->WaitIdle();
  EXPECT_EQ(runs_, 1);
  EXPECT_EQ(RunsWithin(49), 0);
  EXPECT_EQ(RunsWithin(1), 1);
}

TEST_F(ActionSystemTest, ARunThatTheEndOfTheProcessInterruptedIsMadeUpFor) {
  std::string during;
  AgentData data = Data();
  system_->CreatePeriodic(CODE, Action([&](ActionParameters&) {
                            during = Stored();
                            return ActionResponse();
                          }),
                          data, Timing(PERIOD, START));
  system_->WaitIdle();
  EXPECT_EQ(during, "100 1000100 1000000");
  EXPECT_EQ(Stored(), "100 1000100");

  system_.reset();
  data.SetString(PeriodicKey(CODE), during);  // as a process leaves it that dies in the run
  Restart();
  Create(PERIOD, START);
  system_->WaitIdle();
  EXPECT_EQ(runs_, 1);
  EXPECT_EQ(Stored(), "100 1000100");
}

TEST_F(ActionSystemTest, AReplacedActionForgetsTheFormerTimes) {
  Create(PERIOD, START + 50);
  Replace(10, START + 200);
  EXPECT_EQ(RunsWithin(199), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(RunsWithin(10), 1);
  Restart();
  Replace(PERIOD, START + 500);
  EXPECT_EQ(RunsWithin(289), 0);
  EXPECT_EQ(RunsWithin(1), 1);
}

TEST_F(ActionSystemTest, APeriodOfZeroRunsOnceAndForgetsTheState) {
  Create(0, START + 50);
  Restart();
  Create(0, START + 9999);
  EXPECT_EQ(RunsWithin(50), 1);
  EXPECT_EQ(RunsWithin(10000), 0);
  EXPECT_EQ(Stored(), "none");
  Create(0, START + 20000);
  EXPECT_EQ(RunsWithin(20000), 1);
}

TEST_F(ActionSystemTest, AHandlerMayInstallItsOwnActionAnew) {
  for (const bool replace : {true, false}) {
    const int before = runs_;
    AgentData data = Data();
    const long now = std::chrono::duration_cast<seconds>(clock_->Now().time_since_epoch()).count();
    system_->ReplacePeriodic(CODE, Action([&](ActionParameters&) {
                               replace ? Replace(0, now + 30) : Create(0, now + 30);
                               return ActionResponse();
                             }),
                             data, Timing(0, now));
    system_->WaitIdle();
    EXPECT_EQ(Stored(), "0 " + std::to_string(now + 30)) << replace;
    EXPECT_EQ(RunsWithin(30), 1) << replace;
    EXPECT_EQ(runs_ - before, 1) << replace;
  }
}

TEST_F(ActionSystemTest, RunsOfOneActionDoNotOverlap) {
  std::promise<void> started;
  std::promise<void> release;
  const auto released = release.get_future().share();
  std::atomic<int> running{0};
  std::atomic<int> most{0};
  AgentData data = Data();
  system_->CreatePeriodic(CODE, Action([&, released](ActionParameters&) {
                            most = std::max<int>(most, ++running);
                            if (runs_ == 0) started.set_value();
                            released.wait();
                            --running;
                            ++runs_;
                            return ActionResponse();
                          }),
                          data, Timing(PERIOD, START));
  started.get_future().wait();
  for (int i = 0; i < 5; ++i) {
    clock_->Move(seconds(PERIOD));
    system_->LookAtClock();
  }
  release.set_value();
  system_->WaitIdle();
  EXPECT_EQ(most, 1);
  EXPECT_EQ(runs_, 2);  // that one, and one for those that it kept from starting
}

TEST_F(ActionSystemTest, AStoppedSystemStartsNothingAndLeavesPeriodicActionsDue) {
  std::promise<void> started;
  std::promise<void> release;
  ActionSystem single(Data(), clock_, 1);
  single.RunOneShot(CODE, Action([&](ActionParameters&) {
                      started.set_value();
                      release.get_future().wait();
                      ++runs_;
                      return ActionResponse();
                    }),
                    seconds(0));
  AgentData data = Data();
  single.CreatePeriodic(CODE, Counting(), data, Timing(PERIOD, START));
  single.QueueAction(Counting());
  started.get_future().wait();
  auto stopping = std::async(std::launch::async, [&] { single.Stop(); });
  EXPECT_EQ(stopping.wait_for(std::chrono::milliseconds(50)), std::future_status::timeout);
  release.set_value();
  stopping.wait();
  single.RunOneShot(CODE, Counting(), seconds(0));
  single.WaitIdle();
  EXPECT_EQ(runs_, 1);
  EXPECT_EQ(Stored(), "100 1000000");
}

TEST_F(ActionSystemTest, AScheduleRunsTheActionOfItsCodeAndIsTakenOnOnce) {
  const std::string key = std::string(SCHEDULE_KEY_PREFIX) + "task-1";
  AddSchedule(PERIOD, START + 50);
  AddSchedule(PERIOD, START + 50);
  EXPECT_EQ(RunsWithin(50), 1);
  Restart();
  AddSchedule(PERIOD, START + 50);  // the server tells it again
  system_->WaitIdle();
  EXPECT_EQ(RunsWithin(99), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  AddSchedule(0, START + 1000);  // a change
  EXPECT_EQ(RunsWithin(849), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  EXPECT_EQ(Stored(key), "none");
}

TEST_F(ActionSystemTest, AClockThatJumpsByAYearAndBackNeitherLosesNorRepeatsARun) {
  constexpr long YEAR = 366L * 24 * 3600;
  Create(PERIOD, START + 50);
  AgentData data = Data();
  const auto far = Timing(PERIOD, START + 3 * YEAR);
  system_->CreatePeriodic(CODE + 1, Counting(), data, far);
  clock_->SetTimeOfDay(START + YEAR);
  EXPECT_EQ(RunsWithin(0), 1);
  EXPECT_EQ(RunsWithin(PERIOD), 1);
  clock_->SetTimeOfDay(START);
  EXPECT_EQ(RunsWithin(0), 0);
  EXPECT_EQ(RunsWithin(PERIOD), 1);
  EXPECT_EQ(RunsWithin(PERIOD), 1);
  EXPECT_EQ(Stored(PeriodicKey(CODE + 1)), "100 " + std::to_string(START + 3 * YEAR));
  const auto lines = log_.Texts(Logger::LEVEL_INFORMATION);
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_THAT(lines[0], HasSubstr("moved by 31622400 seconds"));
  EXPECT_THAT(lines[1], HasSubstr("moved by -31622500 seconds"));
}

TEST_F(ActionSystemTest, WhatNobodyInstallsAgainGoesOnWhereARestartLeftIt) {
  const auto resume = [this] {
    AgentData data = Data();
    system_->ResumePeriodic(CODE, Counting(), data);
  };
  resume();
  EXPECT_FALSE(system_->Next());
  Create(PERIOD, START + 50);
  Restart();
  resume();
  ASSERT_TRUE(system_->Next());
  EXPECT_EQ(system_->Next()->label, "1036 ACTION_OF_TEST");
  EXPECT_EQ(RunsWithin(49), 0);
  EXPECT_EQ(RunsWithin(1), 1);
  Replace(PERIOD, START + 500);
  resume();  // one was installed in this process
  EXPECT_EQ(RunsWithin(449), 0);
  EXPECT_EQ(RunsWithin(1), 1);
}

TEST_F(ActionSystemTest, AStopGivesUpOnWhatDoesNotEndAndCanNameIt) {
  std::promise<void> started;
  std::promise<void> release;
  system_->RunOneShot(CODE, Action([&](ActionParameters&) {
                        started.set_value();
                        release.get_future().wait();
                        return ActionResponse();
                      }),
                      seconds(0));
  started.get_future().wait();
  EXPECT_FALSE(system_->StopWithin(std::chrono::milliseconds(20)));
  system_->RunOneShot(CODE, Counting(), seconds(0));
  ASSERT_EQ(system_->Running().size(), 1u);
  EXPECT_EQ(system_->Running()[0].label, "1036 ACTION_OF_TEST");
  EXPECT_EQ(system_->Running()[0].since, clock_->Now());
  release.set_value();
  EXPECT_TRUE(system_->StopWithin(seconds(60)));
  EXPECT_EQ(runs_, 0);
  EXPECT_TRUE(system_->Running().empty());
}

TEST_F(ActionSystemTest, SerialActionsRunInTheirOrderOneAtATime) {
  const std::shared_ptr<ActionSystem> system(std::move(system_));
  const auto serial = std::make_shared<SerialActions>(system);
  std::string order;  // not synchronised: nothing else guards it than the order
  std::string done;
  std::promise<void> release;
  for (const char* text : {"a", "b", "x", "c"}) {
    serial->Add(CODE, Action([&, text](ActionParameters&) -> ActionResponse {
                  if (*text == 'a') release.get_future().wait();
                  order += text;
                  if (*text == 'x') throw std::runtime_error("broken");
                  return {};
                }),
                [&, text] { done += text; });
  }
  // Behind all that was handed to the threads so far.
  system->QueueAction(Action([&](ActionParameters&) {
    release.set_value();
    return ActionResponse();
  }));
  system->WaitIdle();
  EXPECT_EQ(order, "abxc");
  EXPECT_EQ(done, "abxc");
}

TEST_F(ActionSystemTest, ASystemWithARealClockFiresByItself) {
  ActionSystem real(Data());
  std::promise<void> fired;
  real.RunOneShot(CODE, Action([&](ActionParameters&) {
                    fired.set_value();
                    return ActionResponse();
                  }),
                  seconds(1));
  EXPECT_EQ(fired.get_future().wait_for(seconds(20)), std::future_status::ready);
}

TEST(PeriodicState, ReadsBackWhatItWritesAndRefusesEverythingElse) {
  for (const char* text : {"0 0", "86400 1767225600", "86400 1767312000 1767225600"}) {
    const auto state = ParsePeriodicState(text);
    ASSERT_TRUE(state) << text;
    EXPECT_EQ(ToText(*state), text);
  }
  for (const char* text : {"", "1", "1 x", "-1 5", "1 -5", "1 2 3 4", "1 2 x", "1 99999999999",
                           "99999999999999999999 1"}) {
    EXPECT_FALSE(ParsePeriodicState(text)) << text;
  }
}

}  // namespace
