#include "module/Actions/KOBActions.h"

#include <gmock/gmock.h>

#include <ctime>
#include <thread>

#include "common/database/DataBase.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace Tests;
using Common::V2::DataBase;

int Now() { return static_cast<int>(std::time(nullptr)); }

struct ChangeCase {
  const char* name;
  int secondsSinceLast;  ///< -1: there was none
  unsigned int period;
  const char* started;  ///< null: nothing
};

void PrintTo(const ChangeCase& given, std::ostream* stream) { *stream << given.name; }

class ChangeTest : public testing::TestWithParam<ChangeCase> {};

TEST_P(ChangeTest, StartsAnInventoryNoOftenerThanThePeriod) {
  const auto& given = GetParam();
  for (const unsigned int code : {32022U, 32023U}) {
    FakeHost host;
    ModuleUnderTest module(host);
    KOBDataSourceV2::updateInventoryChangedPeriod(given.period);
    const int last = given.secondsSinceLast < 0 ? 0 : Now() - given.secondsSinceLast;
    DataBase::SetDataTable("KOB_INVENTORY", last);
    module.Run(code);
    if (given.started) {
      EXPECT_THAT(host.actions->Texts(), ElementsAre(given.started));
    } else {
      EXPECT_THAT(host.actions->Texts(), IsEmpty());
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, ChangeTest,
                         testing::Values(ChangeCase{"WithoutAPeriod", 5, 0, "queue 1036"},
                                         ChangeCase{"WithoutAnInventory", -1, 3600, "queue 1036"},
                                         ChangeCase{"BehindThePeriod", 3600, 3600, "queue 1036"},
                                         ChangeCase{"InsideThePeriod", 10, 3600,
                                                    "replace 32023 every 0"}),
                         [](const auto& given) { return given.param.name; });

TEST(KOBActions, AClockBehindTheLastInventoryStartsNothing) {
  FakeHost host;
  ModuleUnderTest module(host);
  DataBase::SetDataTable("KOB_INVENTORY", Now() + 3600);
  module.Run(32022);
  EXPECT_THAT(host.actions->Texts(), IsEmpty());
  EXPECT_THAT(host.log.Texts(5), IsEmpty());
}

TEST(KOBActions, AnEarlyChangeIsLookedAtAgainBehindThePeriod) {
  FakeHost host;
  ModuleUnderTest module(host);
  KOBDataSourceV2::updateInventoryChangedPeriod(3600);
  const int last = Now() - 1;
  DataBase::SetDataTable("KOB_INVENTORY", last);
  module.Run(32022);
  const auto next = std::chrono::system_clock::to_time_t(host.actions->Last(32023).timing.next);
  EXPECT_NEAR(static_cast<double>(next - last), 3610, 2);
}

TEST(KOBActions, AQueuedInventoryTakesTheChangesParameters) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(32023, WithText("ParameterTaskName", "nightly"));
  EXPECT_TRUE(host.actions->Last(1036).action.parameters.Exist("ParameterTaskName"));
  EXPECT_TRUE(
      host.log.Holds(5, "Software changes successful, executing KOB incremental inventory."));
}

TEST(KOBActions, AMessageGoesToEverySessionWithAStatusEach) {
  FakeHost host;
  ModuleUnderTest module(host);
  host.communications->sessions = {{5, {"501"}}, {9, {"502"}}};
  host.communications->accepts = false;
  module.Run(1027, WithText("message", wxString::FromUTF8("Gr\xC3\xBC\xC3\x9F"
                                                          "e")));
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "2", "2"));
  ASSERT_EQ(host.communications->sent.size(), 2U);
  EXPECT_EQ(host.communications->sent[0].first, 5U);
  EXPECT_EQ(host.communications->sent[1].first, 9U);
  const Common::IPCMessage& message = host.communications->sent[0].second;
  EXPECT_EQ(message.kind, 0);
  EXPECT_EQ(message.code, 32016U);
  EXPECT_EQ(message.key, "message");
  EXPECT_EQ(message.value,
            "Gr\xC3\xBC\xC3\x9F"
            "e");
  EXPECT_TRUE(host.log.Holds(5, "Sending message to sid 5 pid 501"));
}

TEST(KOBActions, AMessageWithoutTextOrReaderFails) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(1027);
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "8 Invalid Parameters"));
  module.Run(1027, WithText("message", "hello"));
  EXPECT_THAT(host.communications->TakeStatuses(),
              ElementsAre("7", "8 No users to send OnShowMessage"));
}

TEST(KOBActions, AUsersProcessSendsNoMessages) {
  FakeHost host(1);
  ModuleUnderTest module(host);
  host.communications->sessions = {{5, {"501"}}};
  module.Run(1027, WithText("message", "hello"));
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7"));
  EXPECT_THAT(host.communications->sent, IsEmpty());
}

TEST(KOBActions, TheRegularTotalInventoryIsStarted) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(1072);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1071 +0"));
}

TEST(KOBActions, ASecondCallDuringTheFirstGivesUpAtOnce) {
  FakeHost host;
  ModuleUnderTest module(host);
  const auto call = [&](unsigned int code) {
    return [&, code] { std::thread([&] { module.Run(code); }).join(); };
  };
  host.actions->onNextStart = call(1072);
  module.Run(1072);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("once 1071 +0", "once 1072 +300"));
  EXPECT_TRUE(host.log.Holds(3, "Reprograming schedule of kob total inventory"));

  host.actions->Forget();
  host.actions->onNextStart = call(32022);
  module.Run(32022);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("queue 1036"));
  EXPECT_TRUE(host.log.Holds(2, "Hardware changes event already running"));

  host.actions->Forget();
  host.actions->onNextStart = call(32023);
  module.Run(32022);
  EXPECT_THAT(host.actions->Texts(), ElementsAre("queue 1036", "queue 1036"));

  host.communications->sessions = {{5, {"501"}}};
  host.communications->onNextSend = call(1027);
  module.Run(1027, WithText("message", "hello"));
  EXPECT_THAT(host.communications->TakeStatuses(), ElementsAre("7", "7", "8", "2"));
}

TEST(KOBActions, ALogonStartsAnInventoryIfTheConfigurationWantsIt) {
  for (const bool wanted : {false, true}) {
    FakeHost host;
    host.dependencies->configuration.kob->inventoryOnLogon = wanted;
    ModuleUnderTest module(host);
    Common::HandlerMap handlers;
    KOBActions actions(
        host.Dependencies(),
        [&](unsigned int code, const Common::ActionParameters& parameters) {
          return module->GetAction(code, parameters);
        },
        handlers);
    Common::ActionParameters none;
    actions.OnLogon(none);
    EXPECT_EQ(host.actions->Texts().size(), wanted ? 1U : 0U);
  }
}

}  // namespace
}  // namespace Norvik::KOB
