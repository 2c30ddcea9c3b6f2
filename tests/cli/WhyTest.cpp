#include "cli/why/Explanation.h"
#include "cli/why/LedgerView.h"
#include "cli/why/SourceState.h"
#include "host/HostError.h"
#include "host/ledger/LedgerTable.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik;
using namespace Norvik::Cli;
using namespace Norvik::Tests;

TEST(Why, ExplainsEachSectionOfTheSchemaAndNoOther) {
  TextList noted = NotedKeys();
  for (const bool ofMac : {true, false}) {
    for (const auto& key : noted) {
      const Explanation explained = ExplainKey(key, ofMac);
      EXPECT_NE(explained.source, "") << key;
      for (const auto& source : explained.asked) EXPECT_NO_THROW(StateOf(source)) << key;
      const bool isSection = explained.section == key;
      EXPECT_FALSE(isSection ? explained.emptyOrOdd.empty() : explained.notes.empty()) << key;
    }
  }
  std::sort(noted.begin(), noted.end());
  const TextList sections = SectionKeys();
  EXPECT_TRUE(std::includes(noted.begin(), noted.end(), sections.begin(), sections.end()));
  EXPECT_EQ(sections.size(), 27u);
}

TEST(Why, NamesWhatAPropertyAsksAndTheNearestKey) {
  const std::tuple<const char*, bool, TextList> asked[] = {
      {"bios.date", true, {"SMBIOS", "I/O registry: IOPlatformExpertDevice"}},
      {"displays.serial", true, {"ioreg", "system_profiler"}},
      {"memory.pageBytes", true, {"sysctl"}},
      {"memory.pageBytes", false, {"/proc/meminfo", "SMBIOS"}},
      {"disk.partition.bootable", true, {"diskutil"}}};
  for (const auto& [key, ofMac, names] : asked) {
    TextList found;
    for (const auto& source : ExplainKey(key, ofMac).asked) found.push_back(NameOf(source));
    EXPECT_EQ(found, names) << key;
  }
  EXPECT_EQ(ExplainKey("disk.serial", true).filled, "never");
  const std::pair<const char*, const char*> wrong[] = {
      {"display", "unknown section display; the nearest is displays"},
      {"displays.serail", "unknown key displays.serail; the nearest is displays.serial"},
      {"bios.date.x", "unknown key bios.date.x; bios.date has no properties"},
      {"", "unknown section ; known are agentConfiguration, "},
      {"bios.", "unknown key bios.; "}};
  for (const auto& [key, text] : wrong) {
    const std::string name = key;
    EXPECT_THAT(MessageOf<Host::UsageError>([&] { ExplainKey(name, true); }), StartsWith(text));
  }
}

OrderedJson Section(const char* key, int milliseconds, const char* command, const char* outcome) {
  return {
      {"keys", {key}},
      {"milliseconds", milliseconds},
      {"tools", {{{"command", command}, {"milliseconds", milliseconds}, {"outcome", outcome}}}}};
}

TEST(Why, TheLedgerNamesTheCostliestAndAToolThatHangs) {
  TestDatabase database;
  for (const char* outcome : {"done", "time limit"}) {
    Host::WriteLedgerRun({{"begun", "2026"},
                          {"milliseconds", 900},
                          {"records", {{"os", 1}}},
                          {"sections",
                           {Section("os", 100, "defaults", "exit code 1"),
                            Section("disk", 700, "diskutil list", outcome)}}});
  }
  TestDatabase::Run("insert into LEDGER(run) values('damaged')");
  database.Close();
  const Ledger ledger = ReadLedger(database.Folder());
  ASSERT_EQ(ledger.runs.size(), 2u);
  EXPECT_EQ(LastOf("disk", ledger)["records"], nullptr);
  EXPECT_EQ(LastOf("os", ledger)["records"], 1);
  EXPECT_EQ(TroubleOf("os", ledger)[0]["runs"], 2);
  EXPECT_EQ(CostliestOf(ledger, 1).size(), 1u);
  EXPECT_EQ(CostliestOf(ledger, 9)[0]["tool"], "diskutil list");
  EXPECT_EQ(
      LastRunLines(LastRunOf(ledger)),
      "last machine inventory: 900 ms, slowest section disk 700 ms, slowest tool diskutil list "
      "700 ms\ntools that held it up: diskutil list (time limit)\n");
}

}  // namespace
