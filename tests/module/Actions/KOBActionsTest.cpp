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
using Texts = std::vector<std::string>;

constexpr char GREETING[] = "Gr\xC3\xBC\xC3\x9F\x65";

int Now() { return static_cast<int>(std::time(nullptr)); }

class KOBActionsTest : public testing::Test {
 protected:
  /// What the action starts.
  Texts Run(unsigned int code, const Common::ActionParameters& parameters = {}) {
    host.actions->Forget();
    module.Run(code, parameters);
    return host.actions->Texts();
  }
  /// Statuses that a message leads to.
  Texts StatusesOf(const Common::ActionParameters& parameters) {
    Run(1027, parameters);
    return host.communications->TakeStatuses();
  }
  static void SetLastInventory(int time) { DataBase::SetDataTable("KOB_INVENTORY", time); }

  FakeHost host;
  ModuleUnderTest module{host};
};

TEST_F(KOBActionsTest, AChangeStartsAnInventoryNoOftenerThanThePeriod) {
  const struct {
    const char* name;
    int last;
    unsigned int period;
    Texts started;
  } rows[] = {{"without a period", Now() - 5, 0, {"queue 1036"}},
              {"without an inventory", 0, 3600, {"queue 1036"}},
              {"behind the period", Now() - 3600, 3600, {"queue 1036"}},
              {"inside the period", Now() - 10, 3600, {"replace 32023 every 0"}},
              {"with a clock behind the inventory", Now() + 3600, 3600, {}}};
  for (const auto& row : rows) {
    KOBDataSourceV2::updateInventoryChangedPeriod(row.period);
    SetLastInventory(row.last);
    for (const unsigned int code : {32022U, 32023U}) {
      EXPECT_EQ(Run(code), row.started) << row.name << " " << code;
    }
  }
}

TEST_F(KOBActionsTest, AClockBehindTheLastInventoryIsNotLogged) {
  SetLastInventory(Now() + 3600);
  Run(32022);
  EXPECT_THAT(host.log.Texts(5), IsEmpty());
}

TEST_F(KOBActionsTest, AnEarlyChangeIsLookedAtAgainBehindThePeriod) {
  KOBDataSourceV2::updateInventoryChangedPeriod(3600);
  const int last = Now() - 1;
  SetLastInventory(last);
  Run(32022);
  const auto next = std::chrono::system_clock::to_time_t(host.actions->Last(32023).timing.next);
  EXPECT_NEAR(static_cast<double>(next - last), 3610, 2);
}

TEST_F(KOBActionsTest, AQueuedInventoryTakesTheChangesParameters) {
  Run(32023, WithText("ParameterTaskName", "nightly"));
  EXPECT_TRUE(host.actions->Last(1036).action.parameters.Exist("ParameterTaskName"));
  EXPECT_TRUE(
      host.log.Holds(5, "Software changes successful, executing KOB incremental inventory."));
}

TEST_F(KOBActionsTest, AMessageGoesToEverySessionWithAStatusEach) {
  host.communications->sessions = {{5, {"501"}}, {9, {"502"}}};
  host.communications->accepts = false;
  EXPECT_THAT(StatusesOf(WithText("message", wxString::FromUTF8(GREETING))),
              ElementsAre("7", "2", "2"));
  ASSERT_EQ(host.communications->sent.size(), 2U);
  EXPECT_EQ(host.communications->sent[0].first, 5U);
  EXPECT_EQ(host.communications->sent[1].first, 9U);
  const Common::IPCMessage& message = host.communications->sent[0].second;
  EXPECT_EQ(message.kind, 0);
  EXPECT_EQ(message.code, 32016U);
  EXPECT_EQ(message.key, "message");
  EXPECT_EQ(message.value, GREETING);
  EXPECT_TRUE(host.log.Holds(5, "Sending message to sid 5 pid 501"));
}

TEST_F(KOBActionsTest, AMessageWithoutTextOrReaderFails) {
  EXPECT_THAT(StatusesOf({}), ElementsAre("7", "8 Invalid Parameters"));
  EXPECT_THAT(StatusesOf(WithText("message", "hello")),
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

TEST_F(KOBActionsTest, ASecondCallDuringTheFirstGivesUpAtOnce) {
  const auto call = [&](unsigned int code) {
    return [&, code] { std::thread([&] { module.Run(code); }).join(); };
  };
  host.actions->onNextStart = call(1072);
  EXPECT_THAT(Run(1072), ElementsAre("once 1071 +0", "once 1072 +300"));
  EXPECT_TRUE(host.log.Holds(3, "Reprograming schedule of kob total inventory"));
  EXPECT_THAT(Run(1072), ElementsAre("once 1071 +0"));

  host.actions->onNextStart = call(32022);
  EXPECT_THAT(Run(32022), ElementsAre("queue 1036"));
  EXPECT_TRUE(host.log.Holds(2, "Hardware changes event already running"));

  host.actions->onNextStart = call(32023);
  EXPECT_THAT(Run(32022), ElementsAre("queue 1036", "queue 1036"));

  host.communications->sessions = {{5, {"501"}}};
  host.communications->onNextSend = call(1027);
  EXPECT_THAT(StatusesOf(WithText("message", "hello")), ElementsAre("7", "7", "8", "2"));
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
