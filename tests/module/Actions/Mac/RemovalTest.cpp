#include "module/Actions/Mac/AdministeredMachine.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

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

}  // namespace
}  // namespace Norvik::KOB
