#include "module/Inventory/SystemSection.h"

#include <gmock/gmock.h>
#include <utmpx.h>

#include <cstring>

#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "support/FakeHost.h"
#include "support/Files.h"
#include "support/Programs.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

class SystemSectionTest : public testing::Test {
 protected:
  SystemInfo Collect() {
    SystemInfo info;
    SystemSection().GetInfo(info);
    return info;
  }

  FakeHost host;
  Programs programs;
};

TEST_F(SystemSectionTest, TakesWhatTheToolsPrintAsItComes) {
  programs.Add("scutil",
               "[ \"$*\" = --dns ] && printf 'search domain[0] : acme.test\\n"
               "search domain[0] : acme.test\\n  search domain[1] : other\\n'");
  programs.Add("defaults",
               "[ \"$2\" = /Library/Preferences/SystemConfiguration/com.apple.smb.server ] && "
               "echo \"the $3\"");
  const auto before = std::time(nullptr);
  const SystemInfo info = Collect();
  EXPECT_EQ(info.hostName, Common::WxStringFromStdString(Common::HostInfoProvider::GetHostName()));
  EXPECT_GE(info.collectionTime, before);
  EXPECT_LE(info.collectionTime, std::time(nullptr));
  EXPECT_EQ(info.domain, "acme.test\n");
  EXPECT_EQ(info.workGroup, "the Workgroup\n");
  EXPECT_EQ(info.description, "the ServerDescription\n");
}

TEST_F(SystemSectionTest, AToolThatFailsLeavesItsFieldEmpty) {
  for (const char* tool : {"scutil", "defaults", "sysctl"}) programs.Add(tool, "exit 1");
  const SystemInfo info = Collect();
  EXPECT_EQ(info.domain, "");
  EXPECT_EQ(info.workGroup, "");
  EXPECT_EQ(info.description, "");
  EXPECT_FALSE(info.virtualizationAvailable);
  EXPECT_EQ(info.server, "");
}

TEST_F(SystemSectionTest, VirtualizationIsReadFromTheProcessorsFeatures) {
  const std::pair<const char*, const char*> rows[] = {
      {"FPU VMX SSE", "Virtualization Intel vt-x 1"},
      {"FPU SVM", "Virtualization AMD amd-v 1"},
      {"SVM VMX", "Virtualization Intel vt-x 1"},
      {"FPU vmx", "  0"}};
  for (const auto& [features, expected] : rows) {
    programs.Add("sysctl", std::string("[ \"$*\" = machdep.cpu.features ] && ") +
                               "echo machdep.cpu.features: " + features);
    const SystemInfo info = Collect();
    EXPECT_EQ(info.virtualizationLabel + " " + info.virtualizationKeyword + " " +
                  std::to_string(info.virtualizationAvailable),
              expected)
        << features;
  }
}

#ifdef __linux__  // Elsewhere the system's own records cannot be replaced.
TEST_F(SystemSectionTest, TheNewestEntryOfAnyTypeNamesTheUser) {
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
  const auto file = host.Folder() / "utmpx";
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
