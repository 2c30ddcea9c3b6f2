#include "module/Inventory/SystemSection.h"

#include <gmock/gmock.h>
#include <utmpx.h>

#include <cstring>

#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "support/LogCapture.h"
#include "support/MacRecording.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

SystemInfo Collect() {
  const LogCapture quiet;
  SystemInfo info;
  SystemSection().GetInfo(info);
  return info;
}

std::vector<std::string> FeaturesOf(const std::string& features) {
  MacRecording machine;
  machine.AddAnswer("sysctl machdep.cpu.features", "machdep.cpu.features: " + features + "\n");
  machine.PutInForce();
  const SystemInfo info = Collect();
  EXPECT_EQ(info.virtualizationAvailable, info.virtualizationLabel != "");
  return {Common::ToUtf8(info.virtualizationLabel), Common::ToUtf8(info.virtualizationKeyword)};
}

TEST(SystemSection, TakesWhatTheToolsPrintAsItComes) {
  const std::string server = "/Library/Preferences/SystemConfiguration/com.apple.smb.server ";
  MacRecording machine;
  machine.AddAnswer("scutil --dns",
                    "search domain[0] : acme.test\nsearch domain[0] : acme.test\n"
                    "  search domain[1] : other\n");
  machine.AddAnswer("defaults read " + server + "Workgroup", "the group\n");
  machine.AddAnswer("defaults read " + server + "ServerDescription", "the server\n");
  machine.PutInForce();
  const auto before = std::time(nullptr);
  const SystemInfo info = Collect();
  EXPECT_EQ(info.hostName, Common::WxStringFromStdString(Common::HostInfoProvider::GetHostName()));
  EXPECT_GE(info.collectionTime, before);
  EXPECT_LE(info.collectionTime, std::time(nullptr));
  EXPECT_EQ(info.domain, "acme.test\n");
  EXPECT_EQ(info.workGroup, "the group\n");
  EXPECT_EQ(info.description, "the server\n");
}

TEST(SystemSection, AToolThatIsNotThereLeavesItsFieldEmpty) {
  MacRecording machine;
  machine.PutInForce();
  const SystemInfo info = Collect();
  EXPECT_EQ(info.domain + info.workGroup + info.description + info.server, "");
  EXPECT_FALSE(info.virtualizationAvailable);
}

TEST(SystemSection, VirtualizationIsReadFromTheProcessorsFeatures) {
  ExpectRows(Json::parse(R"([["FPU VMX SSE", ["Virtualization Intel", "vt-x"]],
                             ["FPU SVM", ["Virtualization AMD", "amd-v"]],
                             ["SVM VMX", ["Virtualization Intel", "vt-x"]],
                             ["FPU vmx", ["", ""]]])"),
             FeaturesOf);
}

#ifdef __linux__  // Elsewhere the system's own records cannot be replaced.
TEST(SystemSection, TheNewestEntryOfAnyTypeNamesTheUser) {
  const auto entry = [](short type, int seconds, const char* user) {
    utmpx record{};
    record.ut_type = type;
    record.ut_tv.tv_sec = seconds;
    std::strncpy(record.ut_user, user, sizeof(record.ut_user));
    return record;
  };
  const std::string longName(sizeof(utmpx::ut_user), 'x');
  const std::pair<std::vector<utmpx>, std::string> rows[] = {
      {{}, ""},
      {{entry(USER_PROCESS, 100, "anna"), entry(BOOT_TIME, 300, "reboot"),
        entry(USER_PROCESS, 200, "ben")},
       "reboot"},
      {{entry(USER_PROCESS, 100, "first"), entry(USER_PROCESS, 100, "second")}, "first"},
      {{entry(USER_PROCESS, 100, longName.c_str())}, longName},
  };
  const TemporaryFolder folder;
  const auto file = folder / "utmpx";
  for (const auto& [entries, user] : rows) {
    WriteFile(file, std::string(reinterpret_cast<const char*>(entries.data()),
                                entries.size() * sizeof(utmpx)));
    ::utmpxname(file.c_str());
    EXPECT_EQ(Common::ToUtf8(Collect().userName), user);
  }
  ::utmpxname("/var/run/utmp");
}
#endif

}  // namespace
}  // namespace Norvik::KOB
