#include "cli/commands/InventoryReport.h"
#include "cli/commands/Rendering.h"
#include "host/run/ResponseJson.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Cli;
using namespace Norvik::Host;
using namespace Norvik::Tests;

/// Lists as their length; single records and null in brackets.
std::map<std::string, Json> CountsIn(const std::string& document) {
  std::istringstream stream(document);
  std::map<std::string, Json> counts;
  for (const auto& [key, count] : CountRecords(stream)) {
    counts[key] = count.isList ? Json(count.records) : Json::array({count.records});
  }
  return counts;
}

TEST(DocumentCounts, CountsTheRecordsOfEachKey) {
  ExpectRows(DataOf("cli/documents.json")["counted"], CountsIn);
}

const RunInfo MACHINE = {1, RunKind::MachineInventory, nullptr};
const RunInfo FILES = {2, RunKind::FileInventory, nullptr};

TEST(InventoryRecorder, AddsTheTimesOfOneSectionAndIgnoresRunsOfAnotherKind) {
  TextList shown;
  InventoryRecorder recorder([&](const auto& sections) { shown.push_back(sections.Name()); });
  const SectionKeys setup = {"setup", "portConnectors"};
  const auto retrieve = [&](const RunInfo& run, const SectionKeys& keys, int taken) {
    recorder.SectionBegun(run, keys);
    recorder.SectionEnded(run, keys, milliseconds(taken));
  };
  retrieve({}, setup, 500);
  retrieve(MACHINE, {"software"}, 250);
  retrieve(MACHINE, setup, 1000);
  recorder.KindDecided(MACHINE, true);
  recorder.TotalInstead(MACHINE, "why");
  recorder.KindDecided(FILES, true);
  recorder.TotalInstead(FILES, "other");
  recorder.NothingToSend(FILES);
  recorder.RequestRefused(RunKind::FileInventory, "other");
  recorder.DocumentStepDone(FILES, {DocumentStep::MOVE, true, "a", "b", {}});
  recorder.See({Logger::LEVEL_ERROR, "an error"});
  recorder.See({Logger::LEVEL_WARNING, "a warning"});

  EXPECT_EQ(shown, (TextList{"setup, portConnectors", "software"}));
  ASSERT_EQ(recorder.Sections().size(), 2u);
  EXPECT_EQ(recorder.Sections()[0].seconds, 1.5);
  const RunResult result = recorder.Result();
  EXPECT_EQ(result.kind, "total");
  EXPECT_EQ(result.fallbackReason, "why");
  EXPECT_EQ(result.refusal, "");
  EXPECT_FALSE(result.nothingToSend);
  EXPECT_TRUE(result.steps.empty());
  EXPECT_EQ(result.problems, TextList{"an error"});
}

TEST(InventoryReport, NamesSectionsByTheirKeysAndSaysWhatIsOneRecord) {
  InventoryReport report;
  report.sections = {{{"setup", "portConnectors"}, 1.5},
                     {{"location"}, 0},
                     {{"software"}, 0.25},
                     {{"features"}, 0}};
  report.records = {{"setup", {1, false}},
                    {"portConnectors", {1, true}},
                    {"location", {0, false}},
                    {"software", {12, true}}};
  EXPECT_EQ(report.ToText(),
            "section                time     records\n"
            "setup, portConnectors  1.500 s  one record, 1\n"
            "location               0.000 s  0\n"
            "software               0.250 s  12\n"
            "features               0.000 s\n"
            "taken in 0.000 s\n");
  const Json json = Json::parse(report.ToJsonText());
  std::vector<Json> records;
  for (const auto& section : json["sections"]) records.push_back(section["records"]);
  EXPECT_EQ(records, (std::vector<Json>{2, 0, 12, nullptr}));
  EXPECT_EQ(json["records"]["software"], 12);
}

TEST(InventoryReport, SucceedsOnlyIfEachStepWorked) {
  for (const auto failing : {DocumentStep::WRITE, DocumentStep::COPY, DocumentStep::COMPRESS,
                             DocumentStep::ENCRYPT, DocumentStep::MOVE}) {
    InventoryRecorder recorder([](const auto&) {});
    recorder.KindDecided(MACHINE, true);
    for (const auto kind : {DocumentStep::WRITE, DocumentStep::COPY, DocumentStep::COMPRESS,
                            DocumentStep::ENCRYPT, DocumentStep::MOVE}) {
      recorder.DocumentStepDone(MACHINE, {kind, kind != failing, "work", "sent", true, 1});
    }
    InventoryReport report;
    static_cast<RunResult&>(report) = recorder.Result();
    EXPECT_EQ(report.Succeeded(), failing == DocumentStep::WRITE) << failing;
    EXPECT_EQ(report.SentKind(), failing == DocumentStep::MOVE ? "" : "incremental");
    EXPECT_EQ(StepsToJson(report.steps)[3]["step"], "move to the outbox");
  }
}

TEST(Rendering, WritesCellsByTheirTypes) {
  const std::pair<ActionPropertyValue, const char*> cases[] = {
      {true, "true"},
      {7u, "7"},
      {18446744073709551615ull, "18446744073709551615"},
      {-7, "-7"},
      {-7ll, "-7"},
      {0.5, "0.5"},
      {wxString::FromUTF8("caf\xC3\xA9"), "\"caf\xC3\xA9\""},
      {std::string("a\"b"), "\"a\\\"b\""},
      {ActionTimePoint(seconds(1767225600)), "\"2026-01-01T00:00:00Z\""}};
  ActionResponseTable::Row row;
  std::string texts;
  for (const auto& [value, text] : cases) {
    EXPECT_EQ(CellToJson(value).dump(), text);
    row.push_back(value);
    texts += (texts.empty() ? "[" : ",") + std::string(text);
  }
  EXPECT_EQ(RowText(row), texts + "]");
  EXPECT_EQ(JsonLine("\xFF"), "\"\xEF\xBF\xBD\"\n");
}

TEST(Rendering, SetsTablesInColumns) {
  using Rows = std::vector<std::vector<OrderedJson>>;
  EXPECT_EQ(TableText(Rows{{"name", "n"}, {"\xC3\xA9", 5}, {"longer", 123}, {"x"}}),
            "name    n\n\xC3\xA9         5\nlonger  123\nx\n");
}

}  // namespace
