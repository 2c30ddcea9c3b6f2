#include <clocale>
#include <sstream>

#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "documents/DocumentText.h"
#include "forge/ForgeProgram.h"
#include "forge/MacDocuments.h"
#include "support/Cases.h"
#include "support/SchemaCheck.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Forge {
namespace {

using namespace Norvik::Tests;
using Json = nlohmann::json;

constexpr std::int64_t MONDAY = 1'767'571'200;
constexpr int DAYS = 30;
constexpr std::size_t FILES = 60;

class FleetTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { std::setlocale(LC_CTYPE, "C.UTF-8"); }
  static void TearDownTestSuite() { std::setlocale(LC_CTYPE, "C"); }

  Mac MacOf(unsigned int number, std::uint64_t seed = 5) const {
    return Mac(profiles_, seed, number, MONDAY);
  }

  Profiles profiles_;
};

/// A program's exit code, output and errors.
struct Outcome {
  int code;
  std::string output;
  std::string errors;
};

Outcome Forge(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "norvik-forge");
  std::ostringstream output;
  std::ostringstream errors;
  const int code = RunForgeProgram(arguments, output, errors);
  return {code, output.str(), errors.str()};
}

/// Lists of records promise no order.
Json Sorted(Json document) {
  for (auto& [key, section] : document.items()) {
    if (section.is_array()) std::sort(section.begin(), section.end());
  }
  return document;
}

TEST_F(FleetTest, IncrementsComposeToTheLastDocument) {
  for (unsigned int number : {1u, 2u, 40u}) {
    const Mac mac = MacOf(number);
    MacDocuments documents(mac, FILES);
    std::string inventory;
    std::string files;
    std::size_t increments = 0;
    int last = 0;
    for (int day = 0; day < DAYS; ++day) {
      for (const MadeDocument& made : documents.Next(day)) {
        std::string& state = made.kind == MadeDocument::FileInventory ? files : inventory;
        state = state.empty() ? made.text
                              : Documents::ApplyIncrement({"state", state}, {"made", made.text});
        if (made.kind == MadeDocument::IncrementalInventory) ++increments;
      }
      if (mac.IsUsed(day)) last = day;
    }
    EXPECT_GT(increments, DAYS / 4u) << number;
    const auto textOf = [&](Json document, const std::string& applied) {
      document["device"] = Json::parse(applied)["device"];
      return Sorted(Json::parse(Documents::TextOf(document)));
    };
    EXPECT_EQ(Sorted(Json::parse(inventory)), textOf(mac.Inventory(last), inventory)) << number;
    EXPECT_EQ(Documents::DifferenceOf({"applied", files},
                                      {"last", Documents::TextOf(mac.Files(last, FILES))}),
              "null")
        << number;
  }
}

TEST_F(FleetTest, ShortComparisonFindsWhatTheWholeOneFinds) {
  constexpr std::size_t MANY = 400;  // so that some change
  const Mac mac = MacOf(9);
  for (int day = 1; day < 30; day += 7) {
    for (const bool files : {false, true}) {
      const Json before = files ? mac.Files(day - 1, MANY) : mac.Inventory(day - 1);
      const Json after = files ? mac.Files(day + 20, MANY) : mac.Inventory(day + 20);
      const std::string whole = Documents::DifferenceOf({"before", Documents::TextOf(before)},
                                                        {"after", Documents::TextOf(after)});
      EXPECT_NE(whole, "null");
      EXPECT_EQ(IncrementBetween(before, after), whole) << day;
    }
  }
}

TEST_F(FleetTest, IdentitiesAreUnique) {
  for (unsigned int number = 1; number <= 60; ++number) {
    const Json document = MacOf(number).Inventory(3);
    const Json schema = Json::parse(
        ContentOf(NORVIK_SOURCE_DIR "/docs/schema/inventory.schema.json"))["properties"];
    for (const auto& [key, section] : document.items()) {
      std::set<Json> identities;
      if (!section.is_array()) continue;
      for (const Json& record : section) {
        Json identity;
        for (const std::string property : schema[key]["x-identity"]) {
          identity.push_back(record[property]);
        }
        EXPECT_TRUE(identities.insert(identity).second) << number << " " << key << identity;
      }
    }
  }
}

TEST_F(FleetTest, DocumentsFollowTheirSchemas) {
  SchemaCheck check;
  for (unsigned int number = 1; number <= 12; ++number) {
    const Mac mac = MacOf(number, 77);
    MacDocuments documents(mac, FILES);
    for (int day = 0; day < 12; ++day) {
      for (const MadeDocument& made : documents.Next(day)) {
        check.Add(made.KindName(), std::to_string(number) + "-" + std::to_string(day), made.text);
      }
    }
  }
  EXPECT_EQ(check.Problems(), std::set<std::string>());
}

TEST_F(FleetTest, MacsDependOnSeedAndNumberOnly) {
  const auto linesOf = [](std::vector<std::string> options) {
    options.insert(options.begin(), {"documents", "--output", "-", "--days", "9", "--files", "20"});
    const Outcome outcome = Forge(options);
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    std::map<std::string, std::vector<std::string>> byMac;
    std::istringstream lines(outcome.output);
    for (std::string line; std::getline(lines, line);) {
      byMac[Json::parse(line)["device"]["guid"]].push_back(line);
    }
    return byMac;
  };
  const auto few = linesOf({"--macs", "2", "--first", "3", "--seed", "8"});
  const auto many = linesOf({"--macs", "4", "--seed", "8"});
  EXPECT_EQ(few.size(), 2u);
  EXPECT_EQ(many.size(), 4u);
  for (const auto& [guid, lines] : few) EXPECT_EQ(lines, many.at(guid));
  for (const auto& [guid, lines] : linesOf({"--macs", "4", "--seed", "9"})) {
    EXPECT_EQ(many.count(guid), 0u);
  }
}

/// What a fleet is: a few common models and programs, a long tail, about 200 programs on each Mac.
TEST_F(FleetTest, IsSkewed) {
  constexpr unsigned int MACS = 150;
  std::map<std::string, unsigned int> models;
  std::map<std::string, unsigned int> programs;
  std::size_t installed = 0;
  for (unsigned int number = 1; number <= MACS; ++number) {
    const Mac mac = MacOf(number);
    ++models[mac.Model()];
    const Json document = mac.Inventory(0);
    installed += document["software"].size();
    for (const Json& program : document["software"]) ++programs[program["name"]];
  }
  const auto rare = [](const auto& counts, unsigned int limit) {
    return std::count_if(counts.begin(), counts.end(),
                         [&](const auto& count) { return count.second <= limit; });
  };
  EXPECT_GT(models["MacBookAir99,1"], MACS / 8);
  EXPECT_GT(rare(models, MACS / 25), 3);
  EXPECT_NEAR(static_cast<double>(installed) / MACS, 200, 30);
  EXPECT_GT(rare(programs, MACS / 10), 200);
}

TEST(ForgeVersions, Follow) {
  ExpectRows(
      DataOf("forge/versions.json"),
      +[](const std::string& version, const std::string& step, int releases) {
        return LaterVersion(version, step, releases);
      });
}

TEST(ForgeProgram, RefusesWrongUse) {
  const TemporaryFolder folder;
  for (const Json& row : Json::parse(DataOf("forge/wrong-calls.json").dump())) {
    std::vector<std::string> arguments = row[0];
    for (std::string& argument : arguments) {
      if (argument == "FULL") argument = folder.Path().parent_path().string();
    }
    const Outcome outcome = Forge(arguments);
    EXPECT_EQ(outcome.code, row[1]) << row;
    EXPECT_NE(outcome.errors.find(row[2].get<std::string>()), std::string::npos)
        << row << outcome.errors;
    EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << row;
    EXPECT_EQ(outcome.output, "") << row;
  }
}

}  // namespace
}  // namespace Norvik::Forge
