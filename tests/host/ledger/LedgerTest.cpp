#include "common/commands/CommandRunner.h"
#include "common/progress/Progress.h"
#include "host/ledger/LedgerRecorder.h"
#include "host/ledger/LedgerTable.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;

/// A run with one section, in which these lines are run.
void TakeInventory(const TextList& lines) {
  const RunScope run(RunKind::MachineInventory);
  run.DecideKind(false);
  const SectionScope section({"displays"});
  for (const auto& line : lines) CommandRunner::ExecCommand(line);
  ReportRecords({{"displays", 2}});
}

TEST(Ledger, NamesToolsByHowTheyEndedAndCountsWhatWasGatheredBefore) {
  const TestDatabase database;
  const ProgressObserverScope ledger(std::make_shared<LedgerRecorder>());
  CommandRunner::SetQueryLimit(seconds(1));
  { const SectionScope before({"disk"}); }
  { const RunScope ofFiles(RunKind::FileInventory); }
  CommandRunner::ExecCommand("echo outside of a section");
  TakeInventory({"sleep 50", "rm /tmp/none; no-such-tool -x > /tmp/none", "printf a | grep b",
                 "false", "echo a", "echo a", "head -c 67108865 /dev/zero"});
  CommandRunner::SetQueryLimit(seconds(0));

  const auto runs = ReadLedgerRuns();
  ASSERT_EQ(runs.size(), 1u);
  EXPECT_EQ(runs[0]["kind"], "total");
  EXPECT_EQ(runs[0]["records"], OrderedJson({{"displays", 2}}));
  EXPECT_EQ(runs[0]["sections"][0]["keys"], OrderedJson({"disk"}));
  const auto& section = runs[0]["sections"][1];
  EXPECT_GE(section["milliseconds"], 1000);
  TextList tools;
  for (const auto& tool : section["tools"]) {
    tools.push_back(tool["command"].get<std::string>() + ": " + tool["runs"].dump() + ", " +
                    tool["outcome"].get<std::string>());
  }
  EXPECT_THAT(tools, ElementsAre("sleep 50: 1, time limit", "no-such-tool -x: 1, missing",
                                 "printf a: 1, done", "false: 1, exit code 1", "echo a: 2, done",
                                 "head -c 67108865 /dev/zero: 1, printed too much"));
}

TEST(Ledger, KeepsTheNewestRunsAndFewCommandsOfEach) {
  const TestDatabase database;
  const ProgressObserverScope ledger(std::make_shared<LedgerRecorder>());
  for (std::size_t i = 0; i < LEDGER_RUNS + 2; ++i) {
    WriteLedgerRun({{"begun", ""},
                    {"milliseconds", i},
                    {"sections", OrderedJson::array()},
                    {"records", OrderedJson::object()}});
  }
  TestDatabase::Run("insert into LEDGER(run) values('{\"sections\":[1]}')");
  EXPECT_EQ(ReadLedgerRuns().size(), LEDGER_RUNS);
  EXPECT_EQ(ReadLedgerRuns().back()["milliseconds"], 2);

  TextList lines;
  for (int i = 0; i < 40; ++i) lines.push_back("echo " + std::string(200, 'x') + std::to_string(i));
  for (int i = 0; i < 40; ++i) lines.push_back("echo " + std::to_string(i));
  TakeInventory(lines);
  EXPECT_EQ(ReadLedgerRuns().size(), LEDGER_RUNS - 1);  // one row is no run
  EXPECT_EQ(ReadLedgerRuns()[0]["sections"][0]["tools"].size(), 17u);
}

TEST(Ledger, ThatCannotBeWrittenIsALineInTheLog) {
  const TestDatabase database;
  const LogCapture log;
  TestDatabase::Run("drop table LEDGER");
  {
    const ProgressObserverScope ledger(std::make_shared<LedgerRecorder>());
    TakeInventory({});
  }
  TakeInventory({});
  EXPECT_THAT(log.Texts(3), ElementsAre(HasSubstr("The ledger of runs is not written: ")));
  EXPECT_THAT(ReadLedgerRuns(), IsEmpty());
}

}  // namespace
