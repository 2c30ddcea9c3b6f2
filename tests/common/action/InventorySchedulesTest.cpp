#include "common/action/InventorySchedules.h"

#include "common/database/DataBase.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Common;
using std::chrono::system_clock;

constexpr std::int64_t HUGE_NUMBER = std::numeric_limits<std::int64_t>::max();

std::int64_t Now() { return system_clock::to_time_t(system_clock::now()); }

TEST(CheckInventoryNextExecutionInit, GivesTheFirstTimeThatIsNotPast) {
  EXPECT_FALSE(CheckInventoryNextExecutionInit(boost::none));
  const std::int64_t now = Now();
  const std::pair<ScheduleInfo, std::int64_t> cases[] = {{{3600, now + 100}, now + 100},
                                                         {{3600, now - 100}, now + 3500},
                                                         {{3600, now - 7300}, now + 3500},
                                                         {{0, now - 100}, now - 100}};
  for (const auto& [schedule, next] : cases) {
    const auto checked = CheckInventoryNextExecutionInit(schedule);
    EXPECT_EQ(checked->next, next);
    EXPECT_EQ(checked->periodSeconds, schedule.periodSeconds);
  }
  for (const ScheduleInfo extreme :
       {ScheduleInfo{HUGE_NUMBER, 1}, {1, HUGE_NUMBER}, {-HUGE_NUMBER, -HUGE_NUMBER}, {1, -5}}) {
    EXPECT_GE(CheckInventoryNextExecutionInit(extreme)->next, 0);
    EXPECT_EQ(extreme.NextTime() > system_clock::now(), extreme.next > now);
  }
}

TEST(CheckInventoryNextExecutionReboot, GivesTheExecutionThatFollowsTheLastRun) {
  const Norvik::Tests::TestDatabase dataBase;
  const std::int64_t now = Now();
  const auto pendingOf = [](const char* key, const boost::optional<ScheduleInfo>& schedule) {
    return system_clock::to_time_t(CheckInventoryNextExecutionReboot(key, schedule));
  };
  const std::tuple<std::int64_t, ScheduleInfo, std::int64_t> cases[] = {
      {0, {3600, now + 100}, 0},                   // never ran
      {now - 50, {3600, now + 100}, now + 100},    // the configured time is to come
      {now - 50, {3600, now - 100}, now + 3500},   // it ran at that time already
      {now - 100, {3600, now - 100}, now + 3500},  // at just that second
      {now - 50, {0, now + 100}, now + 100},       // once, still to come
      {now - 50, {0, now - 100}, 0},               // once, done
  };
  for (const auto& [lastRun, schedule, pending] : cases) {
    V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(lastRun));
    EXPECT_EQ(pendingOf("KOB_INVENTORY", schedule), pending);
    EXPECT_EQ(pendingOf("RUD_INVENTORY", schedule), 0);
  }
  V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(now - 9000));
  EXPECT_EQ(pendingOf("KOB_INVENTORY", boost::none), 0);
  const auto missed = pendingOf("KOB_INVENTORY", ScheduleInfo{3600, 100});
  EXPECT_GE(missed, now);
  EXPECT_LE(missed, Now());
  for (const ScheduleInfo extreme : {ScheduleInfo{HUGE_NUMBER, 1}, {1, HUGE_NUMBER}}) {
    EXPECT_GE(pendingOf("KOB_INVENTORY", extreme), missed);
  }
}

}  // namespace
