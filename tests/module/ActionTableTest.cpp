#include <gmock/gmock.h>

#include "module/ModuleUnderTest.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;
using namespace Tests;

/// Codes that a fresh instance serves, ascending.
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

std::vector<unsigned int> CodesOfBothKinds() {
  std::vector<unsigned int> codes = {1036, 1037, 1038, 1039, 1041, 1045, 1046, 1047, 1060,
                                     1062, 1065, 1068, 1069, 1070, 1071, 1072, 1073};
  for (unsigned int code = 1000; code <= 1032; ++code) {
    if (code != 1004 && code != 1005 && code != 1014 && code != 1028) codes.push_back(code);
  }
  for (const unsigned int code : {32001U, 32004U, 32011U, 32012U, 32022U, 32023U, 32027U}) {
    codes.push_back(code);
  }
  return codes;
}

std::vector<unsigned int> With(std::vector<unsigned int> codes, unsigned int code) {
  codes.push_back(code);
  std::sort(codes.begin(), codes.end());
  return codes;
}

TEST(ActionTable, TheServiceServesItsCodes) {
  EXPECT_EQ(ServedCodes(0), With(CodesOfBothKinds(), 1066));
}

TEST(ActionTable, AUsersProcessServesItsCodes) {
  EXPECT_EQ(ServedCodes(1), With(CodesOfBothKinds(), 1067));
}

TEST(ActionTable, TheModuleNamesItsProductAndItsFiles) {
  FakeHost host;
  ModuleUnderTest module(host);
  EXPECT_EQ(module->GetProductCode(), 1U);
  EXPECT_THAT(module->GetOutputExtensionFiles(), ElementsAre(".jsonkob", ".jsonrud"));
}

TEST(ActionTable, ACodeThatNobodyServesIsAnsweredWithAWarning) {
  FakeHost host;
  ModuleUnderTest module(host);
  EXPECT_FALSE(module.Run(Common::COMMON_ACTION_START_CHANGE_CHECK).text);
  EXPECT_THAT(host.log.Texts(3), ElementsAre("No handler is registered for the action 32019"));
}

TEST(ActionTable, TheInventoryTakesOverTheUpdateOfTheConfiguration) {
  FakeHost host;
  ModuleUnderTest module(host);
  Common::AgentConfigurationInfo configuration;
  configuration.kob.emplace();
  module.Run(ACTION_UPDATE_CONFIGURATION, WithConfiguration(configuration));
  EXPECT_TRUE(Common::AgentData(host.database, "DATA")
                  .GetOptionalString("KOB_ACTIONS_LOCAL_ParameterConfigurationInfo"));
  EXPECT_FALSE(host.log.Holds(4, "Applying new configuration to module"));
  EXPECT_FALSE(host.log.Holds(4, "!"));
}

TEST(ActionTable, AnUpdateWithoutThisProductsConfigurationChangesNothing) {
  FakeHost host;
  ModuleUnderTest module(host);
  module.Run(ACTION_UPDATE_CONFIGURATION, WithConfiguration({}));
  EXPECT_TRUE(host.log.Holds(2, "missing configuration"));
  EXPECT_FALSE(Common::AgentData(host.database, "DATA")
                   .GetOptionalString("KOB_ACTIONS_LOCAL_ParameterConfigurationInfo"));
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
