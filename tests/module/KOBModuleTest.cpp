#include "module/KOBModule.h"

#include <optional>

#include "common/database/DataBase.h"
#include "module/ModuleUnderTest.h"
#include "module/RUD/Data/RudDataSourceV2.h"
#include "module/TaskTable.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

class ModuleSchedules : public testing::TestWithParam<Json> {
 protected:
  Common::AgentConfigurationInfo ConfigurationOf(const Json& wanted) const {
    Common::AgentConfigurationInfo configuration;
    if (wanted.is_null()) return configuration;
    configuration.kob.emplace();
    auto& kob = *configuration.kob;
    const auto set = [&](const char* key, boost::optional<Common::ScheduleInfo>& schedule) {
      if (!wanted.contains(key)) return;
      schedule = Common::ScheduleInfo{wanted[key][0], start_ + wanted[key][1].get<std::int64_t>()};
    };
    set("inventory", kob.inventorySchedule);
    set("changed files", kob.fileInventoryIncrementalSchedule);
    set("files", kob.fileInventorySchedule);
    set("tasks", kob.pendingTasksSchedule);
    return configuration;
  }
  void Prepare(const Json& step) {
    if (step.contains("configured")) {
      host_.dependencies->configuration = ConfigurationOf(step["configured"]);
    }
    if (step.contains("lastInventory")) {
      const std::int64_t time = start_ + step["lastInventory"].get<std::int64_t>();
      Common::V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(time));
    }
    if (step.contains("restart")) module_.reset();
    if (!module_) module_.emplace(host_);
    if (step.contains("sql")) TestDatabase::Run(step["sql"]);
    host_.actions->Forget();
  }
  void Perform(const Json& step) {
    Prepare(step);
    module_->Run(step["code"], step.contains("with")
                                   ? WithConfiguration(ConfigurationOf(step["with"]))
                                   : Common::ActionParameters());
    EXPECT_EQ(Json(host_.actions->Texts()), step["started"]);
    for (const auto& started : host_.actions->All()) {
      EXPECT_EQ(started.action.parameters.Exist(Common::COMMON_PARAMETER_CONFIGURATION),
                started.code == 32004 && step.contains("with"))
          << "the configuration travels with its update alone, not with " << started.code;
    }
    for (const std::string line : PartOf(step, "logs")) {
      EXPECT_TRUE(host_.log.Holds(line[0] - '0', line.substr(2))) << line;
    }
    const std::string last = step.value("lastLine", "");
    if (!last.empty()) {
      EXPECT_EQ(host_.log.Texts(last[0] - '0').back(), last.substr(2));
    }
    for (const auto& [code, range] : PartOf(step, "first").items()) {
      const auto next =
          host_.actions->Last(static_cast<unsigned int>(std::stoul(code))).timing.next;
      EXPECT_GE(next, system_clock::from_time_t(start_) + seconds(range[0])) << code;
      EXPECT_LE(next, system_clock::now() + seconds(range[1])) << code;
    }
  }

 private:
  const std::time_t start_ = system_clock::to_time_t(system_clock::now());
  FakeHost host_{GetParam().value("processKind", 0)};
  /// Loaded at the first step, so that this step can change the host first.
  std::optional<ModuleUnderTest> module_;
};

TEST_P(ModuleSchedules, FollowTheConfigurationAndSurviveARestart) {
  for (const Json& step : GetParam()["steps"]) {
    SCOPED_TRACE(Shown(step));
    Perform(step);
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, ModuleSchedules, ValuesIn(DataOf("module/schedules.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

TEST(UnfinishedFileInventory, IsResumedAtTheStartIfItsTableHoldsIt) {
  for (const int processKind : {0, 1}) {
    for (int status = V2::RudStatusNone; status <= V2::RudStatusPrinting + 1; ++status) {
      SCOPED_TRACE(status);
      FakeHost host(processKind);
      V2::RudDataSource::SetStatus(static_cast<V2::RudStatus>(status), 1, V2::DateBegin);
      const bool isMissing = status > V2::RudStatusPrinting;
      if (isMissing) TestDatabase::Run("drop table RUD2_CURRENT_STATUS");
      ModuleUnderTest(host).Run(32012);
      const bool unfinished = status >= V2::RudStatusScanning && !isMissing;
      EXPECT_EQ(host.actions->Texts().back() == "once 1047 +0", unfinished);
      EXPECT_EQ(host.log.Holds(4, "Last Inventory didn't finish, resuming inventory now."),
                unfinished);
    }
  }
}

std::vector<unsigned int> ServedCodes(int processKind) {
  FakeHost host(processKind);
  ModuleUnderTest module(host);
  std::vector<unsigned int> codes;
  for (const auto& name : Common::ACTION_NAMES) {
    if (!module.NameOf(name.code).empty()) codes.push_back(name.code);
  }
  std::sort(codes.begin(), codes.end());
  return codes;
}

TEST(ActionTable, EachKindOfProcessServesItsCodes) {
  ExpectRows(DataOf("module/served-codes.json"), ServedCodes);
}

TEST(ActionTable, IsTheOneThatServersHave) {
  std::map<unsigned int, std::string> served, listed;
  const auto codes = ServedCodes(0);
  FakeHost host;
  ModuleUnderTest module(host);
  for (const unsigned int code : codes) served[code] = module.NameOf(code);
  for (const auto& [code, row] : TaskTable()) listed[code] = row.name;
  EXPECT_EQ(listed, served);
}

TEST(ActionTable, TheModuleNamesItsProductAndItsFilesAndWarnsOfAnUnknownCode) {
  FakeHost host;
  ModuleUnderTest module(host);
  EXPECT_EQ(module->GetProductCode(), 1U);
  EXPECT_THAT(module->GetOutputExtensionFiles(), ElementsAre(".jsonkob", ".jsonrud"));
  EXPECT_FALSE(module.Run(32019).text);
  EXPECT_THAT(host.log.Texts(3), ElementsAre("No handler is registered for the action 32019"));
}

TEST(ActionTable, TheOperatingSystemsTypeIsRecordedOnce) {
  FakeHost host;
  host.identification->first.operatingSystemType = "macOS";
  { ModuleUnderTest module(host); }
  host.identification->first.operatingSystemType = "Linux";
  ModuleUnderTest module(host);
  module.Run(ACTION_SAVE_OPERATING_SYSTEM_TYPE);
  EXPECT_EQ(Common::AgentData(host.database, "DATA").GetOptionalString("OPERATING_SYSTEM_TYPE"),
            std::string("macOS"));
}

TEST(KOBModule, NeedsItsDependenciesToBeBuiltAndToRun) {
  EXPECT_THROW(::GetAgentModuleObject({}), std::bad_weak_ptr);
  FakeHost host;
  ModuleUnderTest module(host);
  host.identification.reset();
  EXPECT_THROW(::GetAgentModuleObject(host.Dependencies()), std::bad_weak_ptr);
  host.dependencies.reset();
  EXPECT_THROW(module.Run(32012), std::bad_weak_ptr);
}

}  // namespace
}  // namespace Norvik::KOB
