#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "host/commands/DocumentCounts.h"
#include "host/commands/InventoryReport.h"
#include "host/commands/InventoryWatch.h"
#include "host/commands/Rendering.h"
#include "host/commands/WatchedPipeline.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
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

TEST(InventoryWatch, TellsWhyATotalInventoryWasSent) {
  const std::string fallback =
      "KOB incremental will not be sent. An KOB total inventory will be sent instead";
  const struct {
    std::vector<std::pair<int, std::string>> lines;
    const char* reason;
  } cases[] = {{{{4, "No new updates. KOB incremental inventory will not be sent"}, {3, fallback}},
                "No new updates. KOB incremental inventory will not be sent"},
               {{{2, "The JSON file at the specified location 'x' does not exist"}, {3, fallback}},
                "The JSON file at the specified location 'x' does not exist"},
               {{{3, fallback}}, "the comparison failed"},
               {{{2, "Unable to compress a from b"}}, ""}};
  for (const auto& row : cases) {
    InventoryWatch watch({});
    See(watch, row.lines);
    EXPECT_EQ(watch.FallbackReason(), row.reason);
  }
}

TEST(DocumentCounts, CountsTheRecordsOfEachKey) {
  std::istringstream document(
      R"({"a":[{"x":[1,2]},{"y":{}}],"b":null,"c":{"list":[1,2,3],"o":{}},"d":[],"e":[[1],[2,3],4]})");
  EXPECT_THAT(CountRecords(document), ElementsAre(Pair("a", 2u), Pair("b", 0u), Pair("c", 1u),
                                                  Pair("d", 0u), Pair("e", 3u)));
  for (const char* text : {"", "[1]", "7", "{\"a\":[1", "null"}) {
    std::istringstream broken(text);
    EXPECT_THAT(CountRecords(broken), IsEmpty()) << text;
  }
}

/// Fails one kind of step.
class FailingPipeline : public IFilePipeline {
 public:
  explicit FailingPipeline(int failing) : failing_(failing) {}
  bool Compress(const boost::filesystem::path&, const boost::filesystem::path&) override {
    return failing_ != PipelineStep::COMPRESS;
  }
  bool Encrypt(const boost::filesystem::path&, const boost::filesystem::path&) override {
    return failing_ != PipelineStep::ENCRYPT;
  }
  bool Copy(const boost::filesystem::path&, const boost::filesystem::path&) override {
    return failing_ != PipelineStep::COPY;
  }
  bool MoveToOutbox(const boost::filesystem::path&, const boost::optional<bool>&) override {
    return failing_ != PipelineStep::MOVE;
  }

 private:
  const int failing_;
};

TEST(WatchedPipeline, PassesEveryAnswerOnAndKeepsIt) {
  for (const int failing :
       {PipelineStep::COMPRESS, PipelineStep::ENCRYPT, PipelineStep::COPY, PipelineStep::MOVE}) {
    WatchedPipeline pipeline(std::make_shared<FailingPipeline>(failing));
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
