#include "module/Actions/KOBActions.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>

#include "common/database/DataBase.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ModuleUnderTest.h"
#include "support/Cases.h"

namespace Norvik::KOB {
namespace {

using namespace testing;
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
    host.actions->Forget();
    Common::ActionParameters none;
    handlers.at(code)(none);
    return host.actions->Texts();
  }

  FakeHost host;
  ModuleUnderTest module{host};
  system_clock::time_point now;
  Common::HandlerMap handlers;
  KOBActions actions{host.Dependencies(),
                     [this](unsigned int code, const Common::ActionParameters& parameters) {
                       return module->GetAction(code, parameters);
                     },
                     handlers, [this] { return now; }};
};

TEST_F(KOBActionsTest, AChangeStartsAnInventoryNoOftenerThanThePeriod) {
  for (const Json& row : DataOf("module/Actions/KOBActions.json")) {
    const int last = row.value("last", 1700000000);
    const std::string started = row.value("started", "");
    const int remaining = row.value("remaining", 0);
    now = system_clock::from_time_t(last) + milliseconds(row["since last"].get<std::int64_t>());
    KOBDataSourceV2::updateInventoryChangedPeriod(row.value("period", 3600U));
    DataBase::SetDataTable("KOB_INVENTORY", last);
    for (const unsigned int code : {32022U, 32023U}) {
      SCOPED_TRACE(Message() << row["name"] << ": " << code);
      const Texts texts = ChangeNow(code);
      const std::string kind = code == 32022 ? "Hardware" : "Software";
      Texts wanted;
      std::string line = ">>";
      if (started == "inventory") {
        wanted = {"queue 1036"};
        line = kind + " changes successful, executing KOB incremental inventory.";
      } else if (started == "later") {
        wanted = {"replace 32023 every 0"};
        line = "KOB incremental inventory execution will be in " + std::to_string(remaining) +
               " seconds";
        const auto delay = host.actions->Last(32023).timing.next - system_clock::now();
        EXPECT_NEAR(std::chrono::duration<double>(delay).count(), remaining, 2);
      }
      EXPECT_EQ(texts, wanted);
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
  EXPECT_THAT(host.communications->requests, Each(R"({"agentIdentifier":"agent-1","product":1})"));
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

TEST_F(KOBActionsTest, ALogonStartsAnInventoryIfTheLastConfigurationWantsIt) {
  for (const bool wanted : {false, true}) {
    auto configuration = host.dependencies->configuration;
    configuration.kob->inventoryOnLogon = wanted;
    for (int i = 0; i < 2; ++i) {
      auto parameters = WithConfiguration(configuration);
      handlers.at(32004)(parameters);
      configuration.kob.reset();
    }
    Common::ActionParameters none;
    actions.OnLogon(none);
    EXPECT_EQ(host.actions->Texts(), wanted ? Texts{"once 1036 +0"} : Texts{});
  }
  EXPECT_TRUE(host.log.Holds(4, "Applying new configuration to module"));
  EXPECT_THAT(host.log.Texts(2), ElementsAre("missing configuration", "missing configuration"));
}

}  // namespace
}  // namespace Norvik::KOB
