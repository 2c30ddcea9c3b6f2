#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "cli/commands/DocumentCounts.h"
#include "cli/commands/InventoryReport.h"
#include "cli/commands/InventoryWatch.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/WatchedPipeline.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Cli;
using namespace Norvik::Host;
using namespace Norvik::Tests;

/// What is seen in lines of the log, each with its level.
Json SeenIn(const std::vector<std::pair<int, std::string>>& lines) {
  Json seen = {{"started", Json::array()}, {"keys", Json::array()}};
  InventoryWatch watch([&](const std::string& name) { seen["started"].push_back(name); });
  for (const auto& [level, text] : lines) watch.See({static_cast<Logger::Level>(level), text});
  for (const auto& section : watch.Sections()) seen["keys"].push_back(section.documentKeys);
  seen["fallback"] = watch.FallbackReason();
  return seen;
}

TEST(InventoryWatch, FollowsTheSectionsAndTellsWhyATotalInventoryWasSent) {
  ExpectRows(DataOf("cli/documents.json")["watched"], SeenIn);
}

std::map<std::string, std::size_t> CountsIn(const std::string& document) {
  std::istringstream stream(document);
  return CountRecords(stream);
}

TEST(DocumentCounts, CountsTheRecordsOfEachKey) {
  ExpectRows(DataOf("cli/documents.json")["counted"], CountsIn);
}

/// Fails one kind of step.
struct StepsPipeline : IFilePipeline {
  using Path = boost::filesystem::path;
  bool Compress(const Path&, const Path&) override { return failing != PipelineStep::COMPRESS; }
  bool Encrypt(const Path&, const Path&) override { return failing != PipelineStep::ENCRYPT; }
  bool Copy(const Path&, const Path&) override { return failing != PipelineStep::COPY; }
  bool MoveToOutbox(const Path&, const boost::optional<bool>&) override {
    return failing != PipelineStep::MOVE;
  }
  int failing = -1;
};

TEST(WatchedPipeline, PassesEveryAnswerOnAndKeepsIt) {
  for (const int failing :
       {PipelineStep::COMPRESS, PipelineStep::ENCRYPT, PipelineStep::COPY, PipelineStep::MOVE}) {
    const auto next = std::make_shared<StepsPipeline>();
    next->failing = failing;
    WatchedPipeline pipeline(next);
    EXPECT_EQ(pipeline.Compress("a", "b"), failing != PipelineStep::COMPRESS);
    EXPECT_EQ(pipeline.Encrypt("a", "b"), failing != PipelineStep::ENCRYPT);
    EXPECT_EQ(pipeline.Copy("a", "b"), failing != PipelineStep::COPY);
    EXPECT_EQ(pipeline.MoveToOutbox("a", true), failing != PipelineStep::MOVE);
    InventoryReport report;
    report.steps = pipeline.Steps();
    ASSERT_EQ(report.steps.size(), 4u);
    for (const auto& step : report.steps) EXPECT_EQ(step.done, step.kind != failing);
    EXPECT_FALSE(report.Succeeded()) << failing;
    EXPECT_EQ(report.Kind(), failing == PipelineStep::MOVE ? "" : "incremental");
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
      {ActionTimePoint(std::chrono::seconds(1767225600)), "\"2026-01-01T00:00:00Z\""}};
  for (const auto& [value, text] : cases) EXPECT_EQ(CellToJson(value).dump(), text);
  EXPECT_EQ(JsonLine("\xFF"), "\"\xEF\xBF\xBD\"\n");
}

TEST(Rendering, SetsTablesInColumns) {
  EXPECT_EQ(TableText({{"name", "n"}, {"\xC3\xA9", 5}, {"longer", 123}, {"x"}}),
            "name    n\n\xC3\xA9         5\nlonger  123\nx\n");
}

}  // namespace
