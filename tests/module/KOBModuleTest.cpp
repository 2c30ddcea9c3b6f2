#include "module/KOBModule.h"

#include <gmock/gmock.h>

#include <optional>

#include "common/database/DataBase.h"
#include "module/ModuleUnderTest.h"
#include "module/RUD/Data/RudDataSourceV2.h"

namespace Norvik::KOB {
namespace {

using namespace testing;
using namespace Tests;
using Common::ScheduleInfo;
using Common::V2::DataBase;
using std::chrono::system_clock;
using Texts = std::vector<std::string>;

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

/// The module is loaded with its first action, so that a test may change the host before.
class Instance {
 public:
  explicit Instance(int processKind) : host(processKind) {}

  /// What the action starts.
  Texts Tell(unsigned int code, const Common::ActionParameters& parameters = {}) {
    if (!module_) module_.emplace(host);
    host.actions->Forget();
    module_->Run(code, parameters);
    return host.actions->Texts();
  }
  Texts Update(const Common::AgentConfigurationInfo& configuration) {
    return Tell(32011, WithConfiguration(configuration));
  }
  Texts Initialise() { return Tell(32012); }
  void Restart() { module_.reset(); }

  FakeHost host;

 private:
  std::optional<ModuleUnderTest> module_;
};

struct KOBModuleTest : testing::Test, Instance {
  KOBModuleTest() : Instance(0) {}
};
struct UsersKOBModuleTest : testing::Test, Instance {
  UsersKOBModuleTest() : Instance(1) {}
};

TEST_F(KOBModuleTest, AFirstConfigurationStartsEverythingInOrder) {
  host.dependencies->configuration.kob = boost::none;
  EXPECT_THAT(Update(AllSchedules()),
              ElementsAre("run 32004", "once 1065 +0", "once 32019 +0", "once 32004 +0",
                          "once 1071 +0", "replace 1036 every 86400", "create 1072 every 432000",
                          "replace 1041 every 172800", "replace 1047 every 259200",
                          "replace 1046 every 600", "once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(4, "Configuration has changed"));
  EXPECT_EQ(host.log.Texts(4).back(), "Rescheduling actions");
  // The configuration travels with its update and with nothing else.
  for (const auto& started : host.actions->All()) {
    EXPECT_EQ(started.action.parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION),
              started.code == 32004)
        << started.what << " " << started.code;
  }
}

TEST_F(KOBModuleTest, TheSameConfigurationAgainLeavesTheSchedulesAlone) {
  const auto configuration = Configuration();
  Update(configuration);
  EXPECT_THAT(Update(configuration), ElementsAre("once 32004 +0", "once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(4, "Module is already initializated"));
  // Nor does it count as a change when a process has seen it that is no more.
  Restart();
  host.dependencies->configuration.kob = boost::none;
  EXPECT_THAT(Update(configuration), Not(Contains("replace 1036 every 86400")));
}

TEST_F(KOBModuleTest, WithoutAConfigurationOfThisProductTheSchedulesAreKept) {
  EXPECT_THAT(Tell(32011), IsEmpty());
  EXPECT_TRUE(host.log.Holds(7, "There is not new configuration"));
  EXPECT_EQ(host.log.Texts(4).back(), "<<");
  Update(Configuration());
  EXPECT_THAT(Update({}), ElementsAre("once 1036 +0"));
  EXPECT_TRUE(host.log.Holds(2, "Missing configuration"));
}

TEST_F(KOBModuleTest, AnAbsentScheduleIsNeitherInstalledNorRemoved) {
  Update(AllSchedules());
  Common::AgentConfigurationInfo onlyTasks;
  onlyTasks.kob.emplace();
  onlyTasks.kob->pendingTasksSchedule = ScheduleInfo{60, Now()};
  EXPECT_THAT(Update(onlyTasks),
              ElementsAre("once 32004 +0", "replace 1046 every 60", "once 1036 +0"));
}

TEST_F(KOBModuleTest, AnInventoryThatWasPendingBeforeARestartIsTakenOnOnce) {
  const std::int64_t last = Now() - DAY / 2;
  DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(last));
  host.dependencies->configuration = Configuration(last);
  EXPECT_THAT(Initialise(), ElementsAre("run 32004", "once 1065 +0", "replace 1036 every 86400",
                                        "once 32019 +0"));
  EXPECT_EQ(host.actions->Last(1036).timing.next, system_clock::from_time_t(last + DAY));
  EXPECT_THAT(Initialise(), IsEmpty());
}

TEST_F(KOBModuleTest, WithoutAPendingExecutionTheNextTimeIsNotPast) {
  host.dependencies->configuration = Configuration(Now() - 10 * DAY + 100);
  Initialise();
  EXPECT_GE(host.actions->Last(1036).timing.next, system_clock::now());
  EXPECT_LE(host.actions->Last(1036).timing.next, system_clock::now() + std::chrono::hours(24));
}

TEST_F(UsersKOBModuleTest, AtTheStartThereAreActionsOfItsOwn) {
  host.dependencies->configuration = Configuration();
  EXPECT_THAT(Initialise(), ElementsAre("run 32004", "once 1065 +0", "replace 32001 every 3600"));
}

TEST_F(UsersKOBModuleTest, AChangedConfigurationInstallsItsSchedules) {
  EXPECT_THAT(Update(Configuration()), Contains("replace 1036 every 86400"));
}

TEST(UnfinishedFileInventory, IsResumedAtTheStartIfItsTableTellsOfIt) {
  for (const int processKind : {0, 1}) {
    for (int status = V2::RudStatusNone; status <= V2::RudStatusPrinting; ++status) {
      SCOPED_TRACE(status);
      Instance instance(processKind);
      V2::RudDataSource::SetStatus(static_cast<V2::RudStatus>(status), 1, V2::DateBegin);
      const bool unfinished = status >= V2::RudStatusScanning;
      EXPECT_EQ(instance.Initialise().back() == "once 1047 +0", unfinished);
      EXPECT_EQ(instance.host.log.Holds(4, "Last Inventory didn't finish, resuming inventory now."),
                unfinished);
    }
    Instance instance(processKind);
    TestDatabase::Run("drop table RUD2_CURRENT_STATUS");
    EXPECT_THAT(instance.Initialise(), Not(Contains("once 1047 +0")));
  }
}

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
  EXPECT_NO_THROW(module.Run(32012));
  EXPECT_TRUE(host.log.Holds(2, "Error in CreateModuleSchedules"));
  EXPECT_EQ(host.actions->Texts().back(), "once 32019 +0");
}

}  // namespace
}  // namespace Norvik::KOB
