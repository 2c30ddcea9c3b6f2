
#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

/// Codes that a new module serves, in ascending order.
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

TEST(ActionTable, TheModuleNamesItsProductAndItsFilesAndWarnsOfAnUnknownCode) {
  FakeHost host;
  ModuleUnderTest module(host);
  EXPECT_EQ(module->GetProductCode(), 1U);
  EXPECT_THAT(module->GetOutputExtensionFiles(), ElementsAre(".jsonkob", ".jsonrud"));
  EXPECT_FALSE(module.Run(32019).text);
  EXPECT_THAT(host.log.Texts(3), ElementsAre("No handler is registered for the action 32019"));
}

TEST(ActionTable, TheInventoryReplacesTheUpdateOfTheConfiguration) {
  FakeHost host;
  ModuleUnderTest module(host);
  const auto stored = [&] {
    return Common::AgentData(host.database, "DATA")
        .GetOptionalString("KOB_ACTIONS_LOCAL_ParameterConfigurationInfo")
        .has_value();
  };
  Common::AgentConfigurationInfo configuration;
  module.Run(ACTION_UPDATE_CONFIGURATION, WithConfiguration(configuration));
  EXPECT_TRUE(host.log.Holds(2, "missing configuration"));
  EXPECT_FALSE(stored());
  configuration.kob.emplace();
  module.Run(ACTION_UPDATE_CONFIGURATION, WithConfiguration(configuration));
  EXPECT_TRUE(stored());
  EXPECT_FALSE(host.log.Holds(4, "Applying new configuration to module"));
  EXPECT_FALSE(host.log.Holds(4, "!"));
}

TEST(ActionTable, AModuleIsNotBuiltWithoutItsDependencies) {
  FakeHost host;
  EXPECT_THROW(::GetAgentModuleObject({}), std::bad_weak_ptr);
  host.identification.reset();
  EXPECT_THROW(::GetAgentModuleObject(host.Dependencies()), std::bad_weak_ptr);
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

}  // namespace
}  // namespace Norvik::KOB
