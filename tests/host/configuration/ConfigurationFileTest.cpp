#include "host/configuration/ConfigurationFile.h"

#include "host/configuration/ManagedPreferences.h"
#include "platform/MachinePath.h"
#include "support/PropertyListText.h"
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

TEST(ScheduleSpread, MovesWhatRepeatsByAPartThatDependsOnTheIdentifierOnly) {
  // The spread, the period, and the range within which all agents are.
  const std::vector<std::tuple<std::string, long, long>> rows = {
      {"{}", 3000, 300},
      {"{}", 86400, 3600},
      {"{}", 0, 0},
      {R"({"percent": 0})", 86400, 0},
      {R"({"percent": 50, "mostSeconds": 9})", 3000, 9}};
  for (const auto& [spread, period, range] : rows) {
    const auto configuration = MakeConfiguration(
        R"({"scheduleSpread": )" + spread + R"(, "pendingTasksSchedule": {"next": 1000, )" +
        R"("periodSeconds": )" + std::to_string(period) + "}}");
    const auto nextOf = [&](int agent) {
      return ForModule(configuration, std::to_string(agent)).kob->pendingTasksSchedule->next;
    };
    std::set<std::int64_t> times;
    for (int agent = 0; agent < 200; ++agent) times.insert(nextOf(agent) - 1000);
    EXPECT_EQ(nextOf(7), nextOf(7));
    EXPECT_GE(*times.begin(), 0);
    EXPECT_LE(*times.rbegin(), range) << spread;
    EXPECT_GE(*times.rbegin(), range * 8 / 10) << spread;
    EXPECT_GE(static_cast<long>(times.size()), std::min(range, 100L)) << spread;
  }
}

/// The managed preferences of a machine with nothing else.
class ManagedPreferences : public testing::Test {
 protected:
  ManagedPreferences() {
    boost::filesystem::create_directories(File().parent_path());
    Norvik::Platform::SetMachineRoot(folder_.Path().string());
  }
  ~ManagedPreferences() override { Norvik::Platform::SetMachineRoot(""); }

  boost::filesystem::path File() const { return folder_ / MANAGED_PREFERENCES; }
  void Write(const Json& list) const {
    WriteFile(File(), list.is_string() ? list.get<Bytes>() : PropertyListOf(list));
  }

  const TemporaryFolder folder_;
};

TEST_F(ManagedPreferences, AnInvalidValueIsReportedWithItsKeyAndWhatIsExpected) {
  for (const Json& row : DataOf("host/configuration/managed-preferences.json")["refused"]) {
    Write(row[0]);
    const std::string place = "managed preferences " + File().string() + ": ";
    EXPECT_THAT(MessageOf<std::runtime_error>([&] { MakeConfiguration("{}"); }),
                StartsWith(place + row[1].get<std::string>()))
        << row;
  }
  boost::filesystem::remove(File());
  boost::filesystem::create_directory(File());
  EXPECT_THAT(MessageOf<std::runtime_error>([&] { MakeConfiguration("{}"); }),
              StartsWith("cannot read the managed preferences " + File().string()));
}

TEST_F(ManagedPreferences, TheirKeysReplaceThoseOfTheFileAsAWhole) {
  for (const Json& row : DataOf("host/configuration/managed-preferences.json")["merged"]) {
    Write(row[0]);
    const EffectiveConfiguration made = MakeConfiguration(row[1].dump());
    const auto& values = made.values;
    EXPECT_EQ(made.toolTimeLimit, seconds(row[1].value("toolTimeLimitSeconds", 300))) << row;
    EXPECT_EQ(made.history.days, PartOf(row[1], "history").value("days", 90u)) << row;
    const CommunicationsInfo& server = values.communications;
    std::ostringstream kob;
    kob << *values.kob;
    Json found = {values.profileId, server.address, server.port, server.certificateFile};
    Json changed = Json::object();
    for (const auto& [key, source] : made.sources) {
      if (source != FROM_DEFAULT) changed[key] = source;
    }
    found.push_back(changed);
    EXPECT_EQ(found, row[2]) << row;
    EXPECT_THAT(kob.str(), HasSubstr(row[3].get<std::string>()));
  }
}

}  // namespace
