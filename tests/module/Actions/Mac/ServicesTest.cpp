#include "module/Actions/Mac/AdministeredMachine.h"
#include "module/Actions/Mac/ConnectionText.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

using RemoteServicesTest = AdministeredMachine;

TEST_F(RemoteServicesTest, ServicesAreListedWithoutTheirDescriptionAndControlledByTheShell) {
  AddFile("root/Library/LaunchDaemons/sample.plist",
          R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>
             <key>Label</key><string>org.example.sample</string>
             <key>Program</key><string>/usr/libexec/sampled</string></dict></plist>)");
  const Lines rows = Ask(1006);
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_EQ(rows[0], "Name|DisplayName|PathName|Status|StartMode|StartName|Description");
  EXPECT_THAT(rows[1], testing::MatchesRegex("org.example.sample\\|org.example.sample\\|"
                                             "/usr/libexec/sampled\\|[^|]*\\|[^|]*\\|"));
  AddRecordedTool("bin/launchctl", "echo refused; exit 1");
  Follow("services.txt");
}

TEST_F(RemoteServicesTest, ConnectionsAreThoseOfTheInternetSection) {
  AddTool("root/usr/sbin/netstat", "[ \"$*\" = -aW ] && cat \"$M/input\"");
  Follow("connections.txt");
  EXPECT_TRUE(host.log.Holds(5, "Error in netstat parser"));
  EXPECT_TRUE(host.log.Holds(5, "udp4 0 0 *.5353 *.* "));
  const std::string text = "Active Internet connections (including servers)\n\na b c d e\n";
  EXPECT_EQ(ReadConnections(text).size(), 1U);
  EXPECT_EQ(ReadConnections(text + "\xFF").size(), 0U) << "not UTF-8";
}

}  // namespace
}  // namespace Norvik::KOB
