#include "module/Actions/Mac/RemoteAdministration.h"

#include <unistd.h>

#include <boost/variant/get.hpp>

#include "module/Actions/Mac/AdministeredMachine.h"
#include "module/Actions/Mac/ConnectionText.h"
#include "module/Actions/Mac/ProcessText.h"
#include "module/Actions/Mac/ShareText.h"
#include "module/Actions/ZebAgentUninstaller.h"
#include "platform/compat/SentAppleEvents.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

constexpr unsigned int ALL[] = {1011, 1013, 1012, 1002, 1003, 1000, 1019, 1020, 1015, 1016, 1017,
                                1018, 1021, 1022, 1006, 1007, 1010, 1045, 1008, 1009, 1024, 1023,
                                1026, 1025, 1032, 1029, 1030, 1031, 1001, 1039, 1062, 1070, 1073};
constexpr const char* NAMES[] = {"cmd",  "type", "name", "password", "domain", "id",
                                 "path", "file", "ext",  "date",     "Guid"};

using RemoteAdministrationTest = AdministeredMachine;

TEST_F(RemoteAdministrationTest, WhatIsRefusedOrLacksAParameterDoesNothing) {
  Follow("refused.txt");
  for (const unsigned int code : {1019U, 1020U, 1015U, 1016U, 1017U, 1018U, 1021U, 1022U, 1039U}) {
    EXPECT_EQ(Ask(code, {{"path", "x"}}), Lines{"text Not supported operation"}) << code;
  }
}

TEST_F(RemoteAdministrationTest, ParametersOfAnyKindAreSurvived) {
  const auto tryAll = [&](const Common::ActionParameters& parameters) {
    for (const unsigned int code : ALL) {
      try {
        module.Run(code, parameters);
      } catch (const boost::bad_get&) {
      }
    }
  };
  tryAll({});
  Common::ActionParameters values;
  for (const char* name : NAMES) values.Set(name, true);
  tryAll(values);
  for (const std::string& text :
       {std::string(), std::string("|||\\"), std::string("-1"), std::string(200000, 'a'),
        std::string("%1%%s%n{}\n'\"`$(exit 3)&\\"), std::string("99999999999999999999"),
        std::string("\0x", 2), std::string("\xC2\xB4/../../\xF0\x9F\x98\x80")}) {
    for (const char* name : NAMES) {
      values.Set(name, wxString::FromUTF8(text.data(), text.size()));
    }
    tryAll(values);
    values.Set("type", wxString("0"));
    tryAll(values);
  }
  EXPECT_TRUE(FilesBelow(folder.Path()).empty());
}

TEST_F(RemoteAdministrationTest, ARehearsalDoesNothingWhateverIsAsked) {
  AddTool("bin/evil", "echo x >> \"$M/evidence\"");
  for (const char* tool : {"launchctl", "lpadmin", "sharing", "sh", "rm"}) {
    AddTool(std::string("bin/") + tool, "[ \"$1\" = -l ] || evil");
  }
  AddTool("bin/lpstat", "echo 'device for $(evil): x'");
  for (const char* path : {"x/a", "x/evil", "Users/ada/b.evil", "home/c.evil"}) {
    AddFile(std::string("root/") + path);
  }
  for (const auto& place : {host.Outbox(), host.Previous()}) WriteFile(place / "a.jsonkob", "x");
  const auto files = FilesBelow(folder.Path());
  const auto documents = FilesBelow(host.Folder());
  Common::ActionParameters values;
  const Platform::Rehearsal rehearsal;
  for (const std::string& text :
       {std::string("evil"), std::string("$(evil)"), std::string("`evil`"), std::string(";evil;"),
        std::string("|evil|/x/a|/x"), std::string("a\nevil\n"), std::string("root"),
        std::string("0"), std::string("-1"), std::to_string(::getpid()),
        std::string("20260101000000")}) {
    for (const char* name : NAMES) values.Set(name, wxString::FromUTF8(text.c_str()));
    values.Set("Guid", wxString("agent-1"));
    for (const char* type : {"0", "1", "2", "3"}) {
      values.Set("type", wxString(type));
      for (const unsigned int code : ALL) module.Run(code, values);
      values.Set("cmd", wxString("evil"));
    }
  }
  EXPECT_EQ(FilesBelow(folder.Path()), files);
  EXPECT_EQ(FilesBelow(host.Folder()), documents);
  EXPECT_THAT(TheWrappedCalls().made, testing::Each(testing::EndsWith(" 0")));
  EXPECT_TRUE(Platform::TakeSentAppleEvents().empty());
  std::set<int> kinds;
  for (const auto& step : rehearsal.Steps()) kinds.insert(step.kind);
  EXPECT_EQ(kinds.size(), 6U) << "there was something of each kind that it could have done";
}

using RemoteRemovalTest = AdministeredMachine;

TEST_F(RemoteRemovalTest, AShareIsGoneWhenNoListingNamesIt) {
  AddFile("shares", "name:\tbooks\nname:\told books\nname:\tkept\n");
  AddRecordedTool("bin/sharing",
                  "case \"$1 $2\" in '-l ') cat \"$M/shares\" ;;\n"
                  "  '-r locked') echo 'sharing: unable to remove' ;;\n"
                  "  '-r kept') ;;\n"
                  "  *) sed -i \"/^name:.$2$/d\" \"$M/shares\" ;;\nesac");
  Follow("shares.txt");
}

TEST_F(RemoteRemovalTest, AnAgentGoesOnlyByItsOwnIdentifier) {
  AddRecordedTool("bin/sh");
  Follow("agent.txt");
  AddFile("root/opt/local/norvik/UninstallZebAgent.sh");
  EXPECT_EQ(Ask(1070, {{"Guid", "agent-1"}}),
            (Lines{"ran sh /opt/local/norvik/UninstallZebAgent.sh",
                   "ran sh /opt/local/norvik/UninstallAgent.sh"}));
  host.identification.reset();
  const std::string reason = "Uninstall aborted: parameters not available";
  EXPECT_EQ(Ask(1070, {{"Guid", ""}}), (Lines{"status 8 " + reason, "error " + reason}));
}

TEST_F(RemoteRemovalTest, WithoutACheckOnlyDocumentsGo) {
  for (const auto& place : {host.Outbox(), host.Previous(), host.Work()}) {
    for (const char* name : {"a.jsonkob", "b.jsonrud", "jsonkob"}) WriteFile(place / name, "x");
  }
  EXPECT_EQ(RehearseAndAsk(1073), std::make_pair(Lines{}, Lines{}));
  EXPECT_EQ(NamesIn(host.Outbox()), (Lines{"b.jsonrud", "jsonkob"}));
  EXPECT_EQ(NamesIn(host.Previous()), (Lines{"b.jsonrud", "jsonkob"}));
  EXPECT_EQ(NamesIn(host.Work()).size(), 3U);
}

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

TEST(ToolOutput, MayBeCutAnywhere) {
  const LogCapture log;
  const std::string connections =
      "Active Internet connections (including servers)\n"
      "Proto Recv-Q Send-Q  Local Address          Foreign Address        (state)\n"
      "tcp4       0      0  192.168.1.2.52034      192.0.2.10.5223        ESTABLISHED\n"
      "udp4       0      0  *.5353                 *.*                    \n"
      "Registered kernel control modules\n";
  const std::string shares = "name:\tbooks\npath:\t/b\nname:\tkept\npath:\t/k\n";
  for (std::size_t end = 0; end <= connections.size(); ++end) {
    const auto rows = ReadConnections(connections.substr(0, end));
    ASSERT_LE(rows.size(), 2U);
    for (const auto& row : rows) EXPECT_THAT(row.size(), testing::AnyOf(7U, 8U)) << end;
  }
  for (std::size_t end = 0; end <= shares.size(); ++end) {
    const std::string rest = WithoutShare(shares.substr(0, end), "books");
    EXPECT_EQ(rest.find("/b"), std::string::npos) << end;
  }
  EXPECT_EQ(WithoutShare(shares, "books"), "name:\tkept\npath:\t/k\n");
  const std::string share = "%CPU\n  1.5\n";
  for (std::size_t end = 0; end <= share.size(); ++end) {
    EXPECT_THAT(ReadProcessorShare(share.substr(0, end)),
                testing::AnyOf("100", "", "1", "1.", "1.5"));
  }
}

using ZebAgentUninstallerTest = AdministeredMachine;

TEST_F(ZebAgentUninstallerTest, WhatGoesWrongIsLoggedOnly) {
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_TRUE(host.log.Holds(4, "The ZEB agent is not installed"));
  boost::filesystem::create_directories(folder / "root/opt/local");
  boost::filesystem::create_symlink("norvik", folder / "root/opt/local/norvik");
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_THAT(host.log.Texts(2),
              testing::ElementsAre(testing::StartsWith("Failed to uninstall ZEB agent: ")));
}

}  // namespace
}  // namespace Norvik::KOB
