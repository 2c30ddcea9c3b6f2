#include "module/KOBModule.h"

#include <gmock/gmock.h>

#include "common/database/DataBase.h"
#include "module/ModuleUnderTest.h"
#include "module/RUD/Data/RudDataSourceV2.h"

namespace Norvik::KOB {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using namespace Tests;
using Common::ScheduleInfo;
using Common::V2::DataBase;
using std::chrono::system_clock;

constexpr std::int64_t DAY = 86400;

std::int64_t Now() { return system_clock::to_time_t(system_clock::now()); }

Common::AgentConfigurationInfo Configuration(std::int64_t next = Now() + DAY) {
  Common::AgentConfigurationInfo configuration;
  configuration.kob.emplace();
  configuration.kob->inventorySchedule = ScheduleInfo{DAY, next};
  return configuration;
}

Common::AgentConfigurationInfo AllSchedules() {
  auto configuration = Configuration();
  configuration.kob->fileInventoryIncrementalSchedule = ScheduleInfo{2 * DAY, Now() + DAY};
  configuration.kob->fileInventorySchedule = ScheduleInfo{3 * DAY, Now() + DAY};
  configuration.kob->pendingTasksSchedule = ScheduleInfo{600, Now() - 1};
  return configuration;
}

TEST(KOBModule, AFirstConfigurationStartsEverythingInOrder) {
  FakeHost host;
  host.dependencies->configuration.kob = boost::none;
  ModuleUnderTest module(host);
  module.Run(32011, WithConfiguration(AllSchedules()));
  EXPECT_THAT(host.actions->Texts(),
              ElementsAre("run 32004", "once 1065 +0", "once 32019 +0", "once 32004 +0",
                          "once 1071 +0", "replace 1036 every 86400", "create 1072 every 432000",
                          "replace 1041 every 172800", "replace 1047 every 259200",
                          "replace 1046 every 600", "once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(4, "Configuration has changed"));
  EXPECT_EQ(host.log.Texts(4).back(), "Rescheduling actions");
}

TEST(KOBModule, ParametersTravelWithTheUpdateAndWithNothingElse) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32011, WithConfiguration(Configuration()));
  for (const auto& started : host.actions->All()) {
    EXPECT_EQ(started.action.parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION),
              started.code == 32004)
        << started.what << " " << started.code;
  }
}

TEST(KOBModule, TheSameConfigurationAgainLeavesTheSchedulesAlone) {
  FakeHost host;
  ModuleUnderTest module(host);
  const auto configuration = WithConfiguration(Configuration());
  module.Run(32011, configuration);
  host.actions->Forget();
  module.Run(32011, configuration);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 32004 +0", "once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(4, "Module is already initializated"));
}

TEST(KOBModule, AnotherProcessHavingSeenTheConfigurationCountsAsNoChange) {
  FakeHost host;
  const auto configuration = WithConfiguration(Configuration());
  { ModuleUnderTest(host).Run(32011, configuration); }
  host.dependencies->configuration.kob = boost::none;
  host.actions->Forget();
  ModuleUnderTest module(host);
  module.Run(32011, configuration);
  EXPECT_THAT(host.actions->Texts(), Not(Contains("replace 1036 every 86400")));
}

TEST(KOBModule, WithoutTheParameterNothingIsStarted) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32011);
  EXPECT_THAT(host.actions->Texts(), IsEmpty());
  EXPECT_TRUE(host.log.Holds(7, "There is not new configuration"));
  EXPECT_EQ(host.log.Texts(4).back(), "<<");
}

TEST(KOBModule, AConfigurationWithoutThisProductKeepsTheSchedules) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32011, WithConfiguration(Configuration()));
  host.actions->Forget();
  module.Run(32011, WithConfiguration({}));
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(2, "Missing configuration"));
}

TEST(KOBModule, AnAbsentScheduleIsNeitherInstalledNorRemoved) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32011, WithConfiguration(AllSchedules()));
  host.actions->Forget();
  Common::AgentConfigurationInfo onlyTasks;
  onlyTasks.kob.emplace();
  onlyTasks.kob->pendingTasksSchedule = ScheduleInfo{60, Now()};
  module.Run(32011, WithConfiguration(onlyTasks));
  EXPECT_THAT(host.actions->Texts(),
              ElementsAre("once 32004 +0", "replace 1046 every 60", "once 1036 +0"));
}

TEST(KOBModule, AnInventoryThatWasPendingBeforeARestartIsTakenOn) {
  FakeHost host;
  const std::int64_t last = Now() - DAY / 2;
  DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(last));
  host.dependencies->configuration = Configuration(last);
  ModuleUnderTest module(host);
  module.Run(32012);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("run 32004", "once 1065 +0",
                                                 "replace 1036 every 86400", "once 32019 +0"));
  EXPECT_EQ(host.actions->Last(1036).timing.next, system_clock::from_time_t(last + DAY));
}

TEST(KOBModule, WithoutAPendingExecutionTheNextTimeIsNotPast) {
  FakeHost host;
  host.dependencies->configuration = Configuration(Now() - 10 * DAY + 100);
  ModuleUnderTest module(host);
  module.Run(32012);
  EXPECT_GE(host.actions->Last(1036).timing.next, system_clock::now());
  EXPECT_LE(host.actions->Last(1036).timing.next, system_clock::now() + std::chrono::hours(24));
}

TEST(KOBModule, AUsersProcessStartsItsOwnActions) {
  FakeHost host(1);
  host.dependencies->configuration = Configuration();
  ModuleUnderTest module(host);
  module.Run(32012);
  EXPECT_THAT(host.actions->Texts(),
              ElementsAre("run 32004", "once 1065 +0", "replace 32001 every 3600"));
}

TEST(KOBModule, AUsersProcessInstallsSchedulesOfAChangedConfiguration) {
  FakeHost host(1);
  ModuleUnderTest module(host);
  module.Run(32011, WithConfiguration(Configuration()));
  EXPECT_THAT(host.actions->Texts(), Contains("replace 1036 every 86400"));
}

TEST(KOBModule, ASecondInitialisationDoesNothing) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32012);
  host.actions->Forget();
  module.Run(32012);
  EXPECT_THAT(host.actions->Texts(), IsEmpty());
}

class UnfinishedFileInventory : public testing::TestWithParam<int> {};

TEST_P(UnfinishedFileInventory, IsResumedAtTheStart) {
  for (int status = V2::RudStatusNone; status <= V2::RudStatusPrinting; ++status) {
    SCOPED_TRACE(status);
    FakeHost host(GetParam());
    V2::RudDataSource::SetStatus(static_cast<V2::RudStatus>(status), 1, V2::DateBegin);
    ModuleUnderTest module(host);
    module.Run(32012);
    const bool unfinished = status >= V2::RudStatusScanning;
    EXPECT_EQ(host.actions->Texts().back() == "once 1047 +0", unfinished);
    EXPECT_EQ(host.log.Holds(4, "Last Inventory didn't finish, resuming inventory now."),
              unfinished);
  }
}

TEST_P(UnfinishedFileInventory, IsNotLookedForWithoutItsTable) {
  FakeHost host(GetParam());
  TestDatabase::Run("drop table RUD2_CURRENT_STATUS");
  ModuleUnderTest module(host);
  module.Run(32012);
  EXPECT_THAT(host.actions->Texts(), Not(Contains("once 1047 +0")));
}

INSTANTIATE_TEST_SUITE_P(BothKinds, UnfinishedFileInventory, testing::Values(0, 1));

TEST(KOBModule, ExpiredDependenciesGoBackToTheHost) {
  FakeHost host;
  ModuleUnderTest module(host);
  host.dependencies.reset();
  EXPECT_THROW(module.Run(32012), std::bad_weak_ptr);
}

TEST(KOBModule, AFailureOfTheSchedulesDoesNotStopTheStart) {
  FakeHost host;
  host.dependencies->configuration = Configuration();
  ModuleUnderTest module(host);
  TestDatabase::Run("drop table DATA");
  // Found in the database that is left: nothing is written before the schedules.
  EXPECT_NO_THROW(module.Run(32012));
  EXPECT_TRUE(host.log.Holds(2, "Error in CreateModuleSchedules"));
  EXPECT_EQ(host.actions->Texts().back(), "once 32019 +0");
}

}  // namespace
}  // namespace Norvik::KOB
