#include "module/Actions/InventoryActions.h"

#include <gmock/gmock.h>

#include <thread>

#include "common/database/DataBase.h"
#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace Tests;
using Common::V2::DataBase;

class InventoryActionsTest : public testing::Test {
 protected:
  void RunTotal(bool incremental) {
    Common::ActionParameters parameters;
    parameters.Set("kobIncremental", incremental);
    module.Run(1071, parameters);
  }
  std::vector<std::string> Statuses() { return host.communications->TakeStatuses(); }
  int LastInventory() { return DataBase::GetDataTable("KOB_INVENTORY"); }

  FakeHost host;
  ModuleUnderTest module{host};
};

TEST_F(InventoryActionsTest, ATotalInventoryReportsItsStateAndItsFile) {
  const auto before = std::time(nullptr);
  module.Run(1071);
  EXPECT_THAT(Statuses(), ElementsAre("7", "2"));
  EXPECT_GE(LastInventory(), before);
  EXPECT_EQ(host.communications->newFiles, 1);
  EXPECT_THAT(host.pipeline->calls, Contains("move total"));
  EXPECT_TRUE(host.log.Holds(4, "Generating KOB inventory..."));
  EXPECT_TRUE(host.log.Holds(4, "KOB Inventory finished"));
}

TEST_F(InventoryActionsTest, AFirstIncrementalInventoryStartsATotalOne) {
  module.Run(1036);
  EXPECT_THAT(Statuses(), ElementsAre("7"));
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1071 +0"));
  EXPECT_FALSE(host.actions->Last(1071).action.parameters.Exist("kobIncremental"));
  EXPECT_EQ(LastInventory(), 0);
  host.actions->RunWaiting();
  EXPECT_THAT(Statuses(), ElementsAre("7", "2"));
  EXPECT_NE(LastInventory(), 0);
}

TEST_F(InventoryActionsTest, ALaterIncrementalInventoryRunsAtOnce) {
  DataBase::SetDataTable("KOB_INVENTORY", 1);
  module.Run(1036);
  EXPECT_THAT(Statuses(), ElementsAre("7", "7", "2"));
  EXPECT_THAT(host.actions->Texts(), IsEmpty());
  EXPECT_GT(LastInventory(), 1);
  EXPECT_TRUE(host.log.Holds(4, "Generating KOB incremental inventory..."));
  // The request's words, though what went out was a total one.
  EXPECT_TRUE(host.log.Holds(4, "KOB incremental Inventory finished"));
  EXPECT_THAT(host.pipeline->calls, Contains("move total"));
}

TEST_F(InventoryActionsTest, TheKindIsTheParametersValue) {
  RunTotal(false);
  EXPECT_TRUE(host.log.Holds(4, "KOB Inventory finished"));
  RunTotal(true);
  EXPECT_TRUE(host.log.Holds(4, "KOB incremental Inventory finished"));
}

TEST_F(InventoryActionsTest, WithoutATokenATotalInventoryIsTriedLater) {
  host.identification->token.clear();
  RunTotal(true);
  EXPECT_THAT(Statuses(), IsEmpty());
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1071 +60"));
  EXPECT_TRUE(host.actions->Last(1071).action.parameters.Values().empty());
  EXPECT_EQ(LastInventory(), 0);
  EXPECT_TRUE(host.log.Holds(4, "The token is null, kob Inventory not started"));
}

TEST_F(InventoryActionsTest, ASecondRequestDuringARunIsRefused) {
  std::vector<std::string> statusesOfTheSecond;
  host.pipeline->beforeStep = [&](const std::string& step) {
    if (step != "compress") return;
    Statuses();
    std::thread([&] { module.Run(1071); }).join();
    statusesOfTheSecond = Statuses();
  };
  module.Run(1071);
  EXPECT_THAT(statusesOfTheSecond, ElementsAre("8 KOB Inventory already running"));
  EXPECT_TRUE(host.log.Holds(3, "KOB Inventory already running"));
  EXPECT_THAT(Statuses(), ElementsAre("2"));
  EXPECT_EQ(host.communications->newFiles, 1);
  module.Run(1071);
  EXPECT_THAT(Statuses(), Contains("2"));
}

TEST_F(InventoryActionsTest, ARunThatFailedInsideStillCounts) {
  host.pipeline->beforeStep = [](const std::string&) { throw std::runtime_error("torn cable"); };
  module.Run(1071);
  EXPECT_TRUE(host.log.Holds(2, "Unable to generate kob inventory: torn cable"));
  EXPECT_THAT(Statuses(), ElementsAre("7", "2"));
  EXPECT_NE(LastInventory(), 0);
}

TEST_F(InventoryActionsTest, AFailureBeforeTheRunGoesBackAndReleasesTheLock) {
  host.identification->failure = "no facts";
  EXPECT_THROW(module.Run(1071), std::runtime_error);
  EXPECT_THAT(Statuses(), IsEmpty());
  EXPECT_EQ(LastInventory(), 0);
  host.identification->failure.clear();
  module.Run(1071);
  EXPECT_THAT(Statuses(), ElementsAre("7", "2"));
  host.identification.reset();
  EXPECT_THROW(module.Run(1071), std::bad_weak_ptr);
}

TEST(InventoryActions, NeedsAConfiguration) {
  FakeHost host;
  host.dependencies->configuration.kob = boost::none;
  ModuleUnderTest module(host);
  EXPECT_THROW(module.Run(1071), boost::bad_optional_access);
  EXPECT_THAT(host.communications->TakeStatuses(), IsEmpty());
  Common::AgentConfigurationInfo configuration;
  configuration.kob.emplace();
  module.Run(32004, WithConfiguration(configuration));
  module.Run(1071);
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "2"));
}

TEST(InventoryActions, AUsersProcessDoesNotAskForTheAgentsIdentity) {
  FakeHost host(1);
  ModuleUnderTest module(host);
  module.Run(1071);
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "2"));
}

}  // namespace
}  // namespace Norvik::KOB
