#include "host/configuration/ConfigurationFile.h"

#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

TEST(ConfigurationFile, ReadsEveryKey) {
  const auto configuration = ParseConfiguration(R"({
    "profileId": 4294967295, "server": {"address": "mgmt.example.com", "port": 8443,
      "caFile": "/ca.pem", "connectTimeoutSeconds": 5, "requestTimeoutSeconds": 6},
    "excludedFiles": ["a.tmp"], "excludedPaths": ["/private/var/vm", "/b"],
    "additionalExtensions": ["c"], "includedExtensions": ["app", "dylib"],
    "inventorySchedule": {"periodSeconds": 86400, "next": 1767225600},
    "fileInventoryIncrementalSchedule": {"periodSeconds": 1, "next": 2},
    "fileInventorySchedule": {"periodSeconds": 3}, "pendingTasksSchedule": {"next": 4},
    "inventoryOnLogon": true, "survey": {"macos": true, "linux": true}})");
  EXPECT_EQ(configuration.profileId, 4294967295u);
  EXPECT_EQ(configuration.communications.address, "mgmt.example.com");
  EXPECT_EQ(configuration.communications.port, 8443u);
  EXPECT_EQ(configuration.communications.certificateFile, "/ca.pem");
  EXPECT_EQ(configuration.communications.connectTimeoutSeconds, 5u);
  EXPECT_EQ(configuration.communications.requestTimeoutSeconds, 6u);
  ASSERT_TRUE(configuration.kob);
  std::ostringstream kob;
  kob << *configuration.kob;
  EXPECT_EQ(kob.str(),
            "excludedFiles=1[5:a.tmp,];excludedPaths=2[15:/private/var/vm,2:/b,];"
            "additionalExtensions=1[1:c,];includedExtensions=2[3:app,5:dylib,];"
            "inventorySchedule=every 86400 from 1767225600;"
            "fileInventoryIncrementalSchedule=every 1 from 2;fileInventorySchedule=every 3 from 0;"
            "pendingTasksSchedule=every 0 from 4;inventoryOnLogon=true");
  ASSERT_TRUE(configuration.survey);
  EXPECT_TRUE(configuration.survey->onMacOs);
  EXPECT_FALSE(configuration.survey->onWindows);
  EXPECT_TRUE(configuration.survey->onLinux);
}

TEST(ConfigurationFile, AnInvalidValueIsReportedWithItsKeyAndWhatIsExpected) {
  for (const Json& row : DataOf("host/configuration/refused-configurations.json")) {
    EXPECT_THAT(MessageOf<ConfigurationError>([&] { ParseConfiguration(row[0].get<Bytes>()); }),
                StartsWith(row[1].get<std::string>()))
        << row;
  }
}

TEST(ConfigurationFile, AFileThatIsTooLargeIsReportedByItsName) {
  const TemporaryFolder folder;
  WriteFile(folder / "agent.json", std::string(2 << 20, ' '));
  EXPECT_THAT(MessageOf<UsageError>([&] { ReadConfigurationFile(folder / "agent.json"); }),
              HasSubstr("agent.json: it is larger than"));
}

}  // namespace
