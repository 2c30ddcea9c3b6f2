#include "common/action/InventorySchedules.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

#include "common/database/DataBase.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Common;
using std::chrono::system_clock;

constexpr std::int64_t HUGE_NUMBER = std::numeric_limits<std::int64_t>::max();

std::int64_t Now() { return system_clock::to_time_t(system_clock::now()); }

std::int64_t InitTime(const ScheduleInfo& schedule) {
  return CheckInventoryNextExecutionInit(schedule)->next;
}

TEST(CheckInventoryNextExecutionInit, GivesTheFirstTimeThatIsNotPast) {
  EXPECT_FALSE(CheckInventoryNextExecutionInit(boost::none));
  EXPECT_EQ(CheckInventoryNextExecutionInit(ScheduleInfo{3600, 5})->periodSeconds, 3600);
  const std::int64_t now = Now();
  EXPECT_EQ(InitTime({3600, now + 100}), now + 100);
  EXPECT_EQ(InitTime({3600, now - 100}), now + 3500);
  EXPECT_EQ(InitTime({3600, now - 7300}), now + 3500);
  EXPECT_EQ(InitTime({0, now - 100}), now - 100);
  for (const ScheduleInfo extreme :
       {ScheduleInfo{HUGE_NUMBER, 1}, {1, HUGE_NUMBER}, {-HUGE_NUMBER, -HUGE_NUMBER}, {1, -5}}) {
    EXPECT_GE(InitTime(extreme), 0);
  }
}

TEST(CheckInventoryNextExecutionReboot, GivesTheExecutionThatFollowsTheLastRun) {
  const Norvik::Tests::TestDatabase dataBase;
  const std::int64_t now = Now();
  struct Case {
    std::int64_t lastRun;
    ScheduleInfo schedule;
    std::int64_t pending;
  };
  const Case cases[] = {
      {0, {3600, now + 100}, 0},                   // never ran
      {now - 50, {3600, now + 100}, now + 100},    // the configured time is to come
      {now - 50, {3600, now - 100}, now + 3500},   // it ran at that time already
      {now - 100, {3600, now - 100}, now + 3500},  // at just that second
      {now - 50, {0, now + 100}, now + 100},       // once, still to come
      {now - 50, {0, now - 100}, 0},               // once, done
  };
  for (const auto& [lastRun, schedule, pending] : cases) {
    V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(lastRun));
    const auto next = CheckInventoryNextExecutionReboot("KOB_INVENTORY", schedule);
    EXPECT_EQ(system_clock::to_time_t(next), pending);
    EXPECT_EQ(CheckInventoryNextExecutionReboot("RUD_INVENTORY", schedule),
              system_clock::from_time_t(0));
  }
  V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(now - 9000));
  EXPECT_EQ(CheckInventoryNextExecutionReboot("KOB_INVENTORY", boost::none),
            system_clock::from_time_t(0));
  const auto missed = CheckInventoryNextExecutionReboot("KOB_INVENTORY", ScheduleInfo{3600, 100});
  EXPECT_GE(system_clock::to_time_t(missed), now);
  EXPECT_LE(system_clock::to_time_t(missed), Now());
  for (const ScheduleInfo extreme : {ScheduleInfo{HUGE_NUMBER, 1}, {1, HUGE_NUMBER}}) {
    EXPECT_GE(CheckInventoryNextExecutionReboot("KOB_INVENTORY", extreme), missed);
  }
}

}  // namespace
