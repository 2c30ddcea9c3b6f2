#include "module/Actions/InventoryActions.h"

#include <gmock/gmock.h>

#include <thread>

#include "common/database/DataBase.h"
#include "module/ModuleUnderTest.h"
#include "support/Cases.h"

namespace Norvik::KOB {
namespace {

using namespace testing;
using namespace Tests;
using Common::V2::DataBase;

using Texts = std::vector<std::string>;

int LastInventory() { return DataBase::GetDataTable("KOB_INVENTORY"); }

class InventoryActionsTest : public testing::Test {
 protected:
  Texts Statuses() { return host.communications->TakeStatuses(); }

  FakeHost host;
  ModuleUnderTest module{host};
};

TEST(InventoryActions, ARequestEndsAsTheStateOfTheMachineWantsIt) {
  for (const Json& row : DataOf("module/Actions/InventoryActions.json")) {
    SCOPED_TRACE(row["name"]);
    FakeHost host(row.value("processKind", 0));
    host.identification->token = row.value("token", "token-1");
    if (row.contains("torn")) {
      host.pipeline->beforeStep = [&](const std::string&) {
        throw std::runtime_error(row["torn"].get<std::string>());
      };
    }
    ModuleUnderTest module(host);
    const int last = row.value("last", 0);
    if (last) DataBase::SetDataTable("KOB_INVENTORY", last);
    Common::ActionParameters parameters;
    if (row.contains("incremental"))
      parameters.Set("kobIncremental", row["incremental"].get<bool>());
    const auto before = std::time(nullptr);
    module.Run(row["code"], parameters);
    const Texts statuses = row.value("statuses", Texts{"7", "2"});
    EXPECT_EQ(host.communications->TakeStatuses(), statuses);
    const bool isDone = !statuses.empty() && statuses.back() == "2";
    EXPECT_EQ(host.communications->newFiles, isDone);
    EXPECT_EQ(LastInventory() >= before, isDone) << LastInventory();
    const Texts& steps = host.pipeline->calls;
    EXPECT_EQ(steps.empty() ? "" : steps.back(), row.value("step", "move total"));
    EXPECT_EQ(host.actions->Texts(), row.value("started", Texts()));
    for (const auto& started : host.actions->All()) {
      EXPECT_TRUE(started.action.parameters.Values().empty());
    }
    EXPECT_THAT(host.log.Texts(4), IsSupersetOf(row.value("log", Texts())));
    EXPECT_THAT(host.log.Texts(2), IsSupersetOf(row.value("errors", Texts())));
    host.actions->RunWaiting();
    const Texts then = row.value("then", Texts());
    EXPECT_EQ(host.communications->TakeStatuses(), then);
    EXPECT_EQ(LastInventory() >= before, isDone || !then.empty());
  }
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

}  // namespace
}  // namespace Norvik::KOB
