#include "module/Actions/KOBActions.h"

#include <boost/algorithm/string/replace.hpp>

#include "common/database/DataBase.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

/// An instance of `KOBActions` with a fixed clock; the module supplies the actions that it starts.
class KOBActionsTest : public testing::Test {
 protected:
  FakeHost host;
  ModuleUnderTest module{host};
  system_clock::time_point now;
  Common::HandlerMap handlers;
  KOBActions actions{host.Dependencies(),
                     [this](unsigned int code, const Common::ActionParameters& parameters) {
                       return module->GetAction(code, parameters);
                     },
                     handlers, [this] { return now; }};
  Common::ActionParameters none;
};

TEST_F(KOBActionsTest, AChangeStartsAnInventoryNoOftenerThanThePeriod) {
  for (const Json& row : DataOf("module/Actions/KOBActions.json")) {
    const int last = row.value("last", 1700000000);
    now = system_clock::from_time_t(last) + milliseconds(row["since last"].get<std::int64_t>());
    KOBDataSourceV2::updateInventoryChangedPeriod(row.value("period", 3600U));
    Common::V2::DataBase::SetDataTable("KOB_INVENTORY", last);
    for (const std::string kind : {"Hardware", "Software"}) {
      SCOPED_TRACE(Message() << row["name"] << ": " << kind);
      host.actions->Forget();
      handlers.at(kind == "Hardware" ? 32022 : 32023)(none);
      EXPECT_EQ(Json(host.actions->Texts()), row.value("started", Json::array()));
      EXPECT_EQ(host.log.Lines().end()[-2].text,
                boost::replace_first_copy(row.value("line", ">>"), "KIND", kind));
      if (!row.contains("remaining")) continue;
      const auto delay = host.actions->Last(32023).timing.next - system_clock::now();
      EXPECT_NEAR(std::chrono::duration<double>(delay).count(), row["remaining"], 2);
    }
  }
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
    actions.OnLogon(none);
    EXPECT_EQ(host.actions->Texts(), wanted ? TextList{"once 1036 +0"} : TextList{});
  }
  EXPECT_TRUE(host.log.Holds(4, "Applying new configuration to module"));
  EXPECT_EQ(host.log.Texts(2), (TextList{"missing configuration", "missing configuration"}));
}

}  // namespace
}  // namespace Norvik::KOB
