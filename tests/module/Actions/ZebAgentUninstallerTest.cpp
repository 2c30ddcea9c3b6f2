#include "module/Actions/ZebAgentUninstaller.h"

#include "module/Actions/Mac/AdministeredMachine.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using testing::StartsWith;

using ZebAgentUninstallerTest = AdministeredMachine;

TEST_F(ZebAgentUninstallerTest, WhatGoesWrongIsLoggedOnly) {
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_TRUE(host.log.Holds(4, "The ZEB agent is not installed"));
  boost::filesystem::create_directories(folder / "root/opt/local");
  boost::filesystem::create_symlink("norvik", folder / "root/opt/local/norvik");
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_THAT(host.log.Texts(2),
              testing::ElementsAre(StartsWith("Failed to uninstall ZEB agent: ")));
}

}  // namespace
}  // namespace Norvik::KOB
