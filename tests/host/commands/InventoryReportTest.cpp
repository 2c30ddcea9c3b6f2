#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "host/commands/DocumentCounts.h"
#include "host/commands/InventoryReport.h"
#include "host/commands/InventoryWatch.h"
#include "host/commands/Rendering.h"
#include "host/commands/WatchedPipeline.h"
#include "support/Cases.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

void See(InventoryWatch& watch, const std::vector<std::pair<int, std::string>>& lines) {
  for (const auto& [level, text] : lines) watch.See({static_cast<Logger::Level>(level), text});
}

TEST(InventoryWatch, FollowsTheSectionsAndLooksUpTheirPlaces) {
  std::vector<std::string> started;
  InventoryWatch watch([&](const std::string& name) { started.push_back(name); });
  See(watch, {{5, "Retrieving Users Information"},
              {5, "Retrieving memory section"},
              {7, ">>"},
              {5, "Retrieving software registered section"},
              {7, ">>"},
              {7, "<<"},
              {7, "<<"},
              {4, "KOB Inventory finished"}});
  EXPECT_THAT(started, ElementsAre("Users", "memory", "software registered"));
  const auto sections = watch.Sections();
  ASSERT_EQ(sections.size(), 3u);
  EXPECT_THAT(sections[0].documentKeys, ElementsAre("user", "group"));
  EXPECT_THAT(sections[2].documentKeys, ElementsAre("software"));
  EXPECT_EQ(watch.FallbackReason(), "");
}

std::string ReasonOf(const std::vector<std::pair<int, std::string>>& lines) {
  InventoryWatch watch({});
  See(watch, lines);
  return watch.FallbackReason();
}

TEST(InventoryWatch, TellsWhyATotalInventoryWasSent) {
  ExpectRows(DataOf("host/commands/fallbacks.json"), ReasonOf);
}

std::map<std::string, std::size_t> CountsIn(const std::string& document) {
  std::istringstream stream(document);
  return CountRecords(stream);
}

TEST(DocumentCounts, CountsTheRecordsOfEachKey) {
  EXPECT_THAT(
      CountsIn(
          R"({"a":[{"x":[1,2]},{"y":{}}],"b":null,"c":{"list":[1,2,3],"o":{}},"d":[],"e":[[1],[2,3],4]})"),
      ElementsAre(Pair("a", 2u), Pair("b", 0u), Pair("c", 1u), Pair("d", 0u), Pair("e", 3u)));
  for (const char* text : {"", "[1]", "7", "{\"a\":[1", "null"}) {
    EXPECT_THAT(CountsIn(text), IsEmpty()) << text;
  }
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
