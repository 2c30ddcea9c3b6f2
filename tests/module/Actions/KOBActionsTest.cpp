#include "module/Actions/KOBActions.h"

#include <gmock/gmock.h>

#include <chrono>
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
using std::chrono::milliseconds;
using std::chrono::system_clock;
using Texts = std::vector<std::string>;

constexpr char GREETING[] = "Gr\xC3\xBC\xC3\x9F\x65";

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
  /// What a change at the time `now` starts.
  Texts ChangeNow(unsigned int code) {
    Common::HandlerMap handlers;
    const auto factory = [&](unsigned int started, const Common::ActionParameters& parameters) {
      return module->GetAction(started, parameters);
    };
    const KOBActions actions(host.Dependencies(), factory, handlers, [&] { return now; });
    host.actions->Forget();
    Common::ActionParameters none;
    handlers.at(code)(none);
    return host.actions->Texts();
  }

  FakeHost host;
  ModuleUnderTest module{host};
  system_clock::time_point now;
};

TEST_F(KOBActionsTest, AChangeStartsAnInventoryNoOftenerThanThePeriod) {
  constexpr int LAST = 1700000000;
  const Texts inventory = {"queue 1036"};
  const Texts later = {"replace 32023 every 0"};
  const struct {
    const char* name;
    int last;
    std::int64_t sinceLast;  // milliseconds
    unsigned int period;
    Texts started;
    int remaining;
  } rows[] = {{"never inventoried", 0, 1700000000000, 3600, inventory, 0},
              {"at the last", LAST, 0, 3600, {}, 0},
              {"at the last without a period", LAST, 999, 0, {}, 0},
              {"with a clock behind the last", LAST, -1000, 3600, {}, 0},
              {"a second later", LAST, 1000, 3600, later, 3609},
              {"between two seconds", LAST, 1500, 3600, later, 3608},
              {"a moment before the period is over", LAST, 3599999, 3600, later, 10},
              {"when the period is over", LAST, 3600000, 3600, inventory, 0},
              {"a second later without a period", LAST, 1000, 0, inventory, 0}};
  for (const auto& row : rows) {
    now = system_clock::from_time_t(row.last) + milliseconds(row.sinceLast);
    KOBDataSourceV2::updateInventoryChangedPeriod(row.period);
    DataBase::SetDataTable("KOB_INVENTORY", row.last);
    for (const unsigned int code : {32022U, 32023U}) {
      SCOPED_TRACE(testing::Message() << row.name << ": " << code);
      EXPECT_EQ(ChangeNow(code), row.started);
      const std::string kind = code == 32022 ? "Hardware" : "Software";
      std::string line = ">>";
      if (row.started == inventory) {
        line = kind + " changes successful, executing KOB incremental inventory.";
      } else if (row.started == later) {
        line = "KOB incremental inventory execution will be in " + std::to_string(row.remaining) +
               " seconds";
        const auto delay = host.actions->Last(32023).timing.next - system_clock::now();
        EXPECT_NEAR(std::chrono::duration<double>(delay).count(), row.remaining, 2);
      }
      EXPECT_EQ(host.log.Lines().end()[-2].text, line);
    }
  }
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

TEST_F(KOBActionsTest, PendingTasksGoToTheActionSystemInTheServersOrder) {
  host.communications->answer = R"({"tasks": [{"identifier": "b", "code": 1071},
    {"identifier": "x", "code": 4711}, {"identifier": "a", "code": 1036}]})";
  EXPECT_THAT(Run(1046), ElementsAre("schedule 1071", "schedule 1036"));
  EXPECT_THAT(Run(32027), ElementsAre("schedule 1071", "schedule 1036"));
  EXPECT_THAT(host.communications->requests,
              testing::Each(R"({"agentIdentifier":"agent-1","product":1})"));
  host.actions->onNextStart = [&] { std::thread([&] { module.Run(32027); }).join(); };
  EXPECT_THAT(Run(1046), ElementsAre("schedule 1071", "schedule 1036"));
  EXPECT_TRUE(host.log.Holds(5, "Get pending task action is already running"));

  host.identification.reset();
  host.communications->answer = R"({"tasks": []})";
  EXPECT_THAT(Run(1046), IsEmpty());
  EXPECT_EQ(host.communications->requests.back(), R"({"agentIdentifier":"","product":1})");
  host.communications.reset();
  EXPECT_THROW(Run(1046), std::bad_weak_ptr);
}

TEST(KOBActions, ALogonStartsAnInventoryIfTheConfigurationWantsIt) {
  for (const bool wanted : {false, true}) {
    FakeHost host;
    ModuleUnderTest module(host);
    Common::HandlerMap handlers;
    KOBActions actions(
        host.Dependencies(),
        [&](unsigned int code, const Common::ActionParameters& parameters) {
          return module->GetAction(code, parameters);
        },
        handlers);
    auto configuration = host.dependencies->configuration;
    configuration.kob->inventoryOnLogon = wanted;
    for (int i = 0; i < 2; ++i) {
      auto parameters = WithConfiguration(configuration);
      handlers.at(32004)(parameters);
      configuration.kob.reset();
    }
    EXPECT_TRUE(host.log.Holds(4, "Applying new configuration to module"));
    EXPECT_THAT(host.log.Texts(2), ElementsAre("missing configuration"));
    Common::ActionParameters none;
    actions.OnLogon(none);
    EXPECT_EQ(host.actions->Texts(), wanted ? Texts{"once 1036 +0"} : Texts{});
  }
}

}  // namespace
}  // namespace Norvik::KOB
