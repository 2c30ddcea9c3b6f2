#include "host/ConfigurationFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <string>

#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

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
  const KobConfigurationInfo& kob = *configuration.kob;
  EXPECT_THAT(kob.excludedFiles, ElementsAre("a.tmp"));
  EXPECT_THAT(kob.excludedPaths, ElementsAre("/private/var/vm", "/b"));
  EXPECT_THAT(kob.additionalExtensions, ElementsAre("c"));
  EXPECT_THAT(kob.includedExtensions, ElementsAre("app", "dylib"));
  EXPECT_EQ(kob.inventorySchedule->periodSeconds, 86400);
  EXPECT_EQ(kob.inventorySchedule->next, 1767225600);
  EXPECT_EQ(kob.fileInventoryIncrementalSchedule->periodSeconds, 1);
  EXPECT_EQ(kob.fileInventoryIncrementalSchedule->next, 2);
  EXPECT_EQ(kob.fileInventorySchedule->periodSeconds, 3);
  EXPECT_EQ(kob.pendingTasksSchedule->next, 4);
  EXPECT_TRUE(kob.inventoryOnLogon);
  ASSERT_TRUE(configuration.survey);
  EXPECT_TRUE(configuration.survey->onMacOs);
  EXPECT_FALSE(configuration.survey->onWindows);
  EXPECT_TRUE(configuration.survey->onLinux);
}

TEST(ConfigurationFile, EveryKeyIsOptional) {
  const auto configuration = ParseConfiguration("{}");
  EXPECT_EQ(configuration.profileId, 0u);
  EXPECT_EQ(configuration.communications.address, "");
  ASSERT_TRUE(configuration.kob);
  EXPECT_FALSE(configuration.kob->inventorySchedule);
  EXPECT_FALSE(configuration.survey);
}

TEST(ConfigurationFile, AWrongValueIsToldWithItsKeyAndWhatItWants) {
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {"", "the configuration is no JSON from byte 1"},
      {"{\"profileId\": 7", "the configuration is no JSON from byte"},
      {"{\"excludedFiles\": [\"\xFF\"]}", "the configuration is no JSON from byte"},
      {"[]", "the configuration wants an object"},
      {R"({"profileld": 7})", "unknown key profileld; known here are additionalExtensions, "},
      {R"({"server": {"adress": "x"}})",
       "unknown key server.adress; known here are address, caFile, "},
      {R"({"server": {"address": "https://x"}})", "server.address wants a host name or address, "},
      {R"({"server": {"caFile": "ca.pem"}})", "server.caFile wants a full path"},
      {R"({"server": {"requestTimeoutSeconds": 0}})", "server.requestTimeoutSeconds wants a whole"},
      {R"({"profileId": 1, "profileId": 2})", "the key profileId stands twice"},
      {R"({"profileId": "7"})", "profileId wants a whole number from 0 to 4294967295"},
      {R"({"profileId": -1})", "profileId wants a whole number"},
      {R"({"profileId": 4294967296})", "profileId wants a whole number"},
      {R"({"profileId": 7.0})", "profileId wants a whole number"},
      {R"({"profileId": null})", "profileId wants a whole number"},
      {R"({"server": "x"})", "server wants an object"},
      {R"({"server": {"address": ""}})", "server.address wants a text that is not empty"},
      {R"({"server": {"port": 0}})", "server.port wants a whole number from 1 to 65535"},
      {R"({"server": {"port": 65536}})", "server.port wants a whole number from 1 to 65535"},
      {R"({"excludedFiles": "x"})", "excludedFiles wants a list of texts"},
      {R"({"excludedPaths": ["x", 3]})", "excludedPaths[1] wants a text that is not empty"},
      {R"({"includedExtensions": [""]})", "includedExtensions[0] wants a text"},
      {R"({"additionalExtensions": ["a\u0000b"]})", "additionalExtensions[0] wants a text"},
      {R"({"inventorySchedule": 5})", "inventorySchedule wants an object"},
      {R"({"inventorySchedule": {"periodSeconds": -1}})",
       "inventorySchedule.periodSeconds wants a whole number from 0 to 315360000"},
      {R"({"fileInventorySchedule": {"next": 1767225600000}})",
       "fileInventorySchedule.next wants a whole number from 0 to 4000000000"},
      {R"({"pendingTasksSchedule": {"next": 18446744073709551615}})",
       "pendingTasksSchedule.next wants a whole number"},
      {R"({"fileInventoryIncrementalSchedule": {"period": 1}})",
       "unknown key fileInventoryIncrementalSchedule.period; known here are next, periodSeconds"},
      {R"({"inventoryOnLogon": 1})", "inventoryOnLogon wants true or false"},
      {R"({"survey": {"linux": "yes"}})", "survey.linux wants true or false"},
      {R"({"survey": {"bsd": true}})", "unknown key survey.bsd"},
  };
  for (const auto& row : cases) {
    try {
      ParseConfiguration(row.text);
      ADD_FAILURE() << "accepted: " << row.text;
    } catch (const ConfigurationError& error) {
      EXPECT_THAT(error.what(), StartsWith(row.error)) << row.text;
    }
  }
}

TEST(ConfigurationFile, AFileThatIsMissingTooLargeOrWrongIsToldByItsName) {
  const Norvik::Tests::TemporaryFolder folder;
  const auto file = folder / "agent.json";
  const auto errorOf = [&] {
    try {
      ReadConfigurationFile(file);
    } catch (const UsageError& error) {
      return std::string(error.what());
    }
    return std::string("no error");
  };
  EXPECT_THAT(errorOf(), HasSubstr("agent.json: No such file"));
  std::ofstream(file.string()) << "{\"a\": 1}";
  EXPECT_THAT(errorOf(), HasSubstr("agent.json: unknown key a"));
  std::ofstream(file.string()) << std::string(2 << 20, ' ');
  EXPECT_THAT(errorOf(), HasSubstr("agent.json is larger than"));
  std::ofstream(file.string()) << "{\"profileId\": 7}";
  EXPECT_EQ(errorOf(), "no error");
}

}  // namespace
