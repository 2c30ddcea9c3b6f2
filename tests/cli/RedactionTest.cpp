#include <sys/stat.h>

#include "cli/ProgramTest.h"
#include "cli/commands/RedactedDocuments.h"
#include "common/commands/Execute.h"
#include "documents/ApplyIncrement.h"
#include "documents/Difference.h"
#include "support/SchemaCheck.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Documents::ApplyIncrement;
using Documents::DifferenceOf;
using Documents::NamedText;

constexpr char MACHINE[] = NORVIK_SOURCE_DIR "/tests/machines/intel-t2";
constexpr char PLANTED[] = NORVIK_SOURCE_DIR "/tests/cli/planted-values.json";

struct Redaction : ProgramTest {
  Redaction() { options_ = {"--machine", MACHINE}; }

  static std::vector<std::string> Redacted(const std::vector<std::string>& texts,
                                           const Host::StandIns& standIns) {
    std::vector<NamedText> documents;
    for (const auto& text : texts) documents.push_back({"document", text});
    Cli::RedactedDocuments redacted(documents, standIns);
    std::vector<std::string> results;
    for (std::size_t at = 0; at < texts.size(); ++at) results.push_back(redacted.Next());
    return results;
  }

  /// The redacted documents have the difference of the originals, and it leads from one to the
  /// other.
  static std::vector<std::string> ExpectPair(const std::string& before, const std::string& after) {
    const std::string changes = DifferenceOf({"before", before}, {"after", after});
    const std::string applied = ApplyIncrement({"before", before}, {"changes", changes});
    const Host::StandIns standIns("a secret of the test");
    const auto redacted = Redacted({before, after, changes, applied}, standIns);
    EXPECT_NE(redacted[0], before);
    EXPECT_EQ(DifferenceOf({"before", redacted[0]}, {"after", redacted[1]}), redacted[2]);
    EXPECT_EQ(ApplyIncrement({"before", redacted[0]}, {"changes", redacted[2]}), redacted[3]);
    EXPECT_EQ(Redacted({before, after, changes, applied}, standIns), redacted);
    return redacted;
  }

  static std::set<std::string> Planted(const std::string& verb, const fs::path& path) {
    Common::Execute helper("'" NORVIK_PYTHON "' '" NORVIK_SOURCE_DIR "/tests/cli/planted-values'");
    helper.Run(verb + " '" + PLANTED + "' '" + path.string() + "'");
    std::set<std::string> values;
    std::istringstream lines(helper.Output());
    for (std::string line; std::getline(lines, line);) values.insert(line);
    values.erase("");
    return values;
  }
};

/// A row: values for places of the document of a Mac, and after them values that are nowhere in the
/// redacted one and values that are.
TEST_F(Redaction, AFullDocumentAndItsSuccessorStayAPair) {
  const std::string document = RunWell({"open", Ask({"inventory"})["file"]}).output;
  SchemaCheck schemas;
  int number = 0;
  for (const auto& row : DataOf("cli/redactions.json")["machine"]) {
    const std::string name = std::to_string(number++) + ".json";
    Json before = Json::parse(document);
    for (const auto& [place, value] : row[0].items()) before[Json::json_pointer(place)] = value;
    Json after = before;
    for (const auto& [place, value] : row[1].items()) after[Json::json_pointer(place)] = value;
    const auto redacted = ExpectPair(before.dump(), after.dump());
    // The schema allows no section that it does not know.
    if (!before.contains("newSection")) schemas.Add("inventory", name, redacted[1]);
    if (redacted[2] != "null") schemas.Add("incremental-inventory", name, redacted[2]);
    for (const std::string text : row[2]) EXPECT_THAT(redacted[1], Not(HasSubstr(text)));
    for (const std::string text : row[3]) EXPECT_THAT(redacted[1], HasSubstr(text));
  }
  EXPECT_THAT(schemas.Problems(), IsEmpty());
}

/// A row: files as [folder, name, extension, time] before and after, and as above.
TEST_F(Redaction, FileInventoriesStayAPair) {
  SchemaCheck schemas;
  const auto documentOf = [](const Json& files) {
    Json folders = Json::array();
    for (const Json& file : files) {
      folders.push_back({{"files",
                          {{{"extension", file[2]},
                            {"fileStatus", -1},
                            {"filename", file[1]},
                            {"lastMod", file[3]},
                            {"size", 1}}}},
                         {"pathName", file[0]}});
    }
    return Json{{"device", {{"assetDate", 1}, {"guid", "b7e1c2d3-0000-4aaa-9bbb-c0ffee123456"}}},
                {"paths", folders},
                {"typeInventory", 0}}
        .dump();
  };
  int number = 0;
  for (const auto& row : DataOf("cli/redactions.json")["files"]) {
    const auto redacted = ExpectPair(documentOf(row[0]), documentOf(row[1]));
    for (std::size_t at = 0; at < redacted.size(); ++at) {
      schemas.Add("file-inventory", std::to_string(number++), redacted[at]);
      for (const std::string text : row[2]) EXPECT_THAT(redacted[at], Not(HasSubstr(text)));
    }
    for (const std::string text : row[3]) EXPECT_THAT(redacted[1], HasSubstr(text));
  }
  EXPECT_THAT(schemas.Problems(), IsEmpty());
}

TEST_F(Redaction, ASupportArchiveHasNoneOfThePlantedValuesInAnyFormat) {
  RunWell({"inventory"});
  EXPECT_THAT(Planted("plant", Data()), IsEmpty());
  const auto all = DataOf("cli/planted-values.json")["values"].get<std::set<std::string>>();
  EXPECT_GE(all.size(), 30u);
  EXPECT_EQ(Planted("find", Data()), all);
  const auto before = FilesBelow(Data());
  const fs::path archive = folder_ / "bundle.zip";
  const auto contents = Ask({"doctor", "--bundle", archive.string()});
  EXPECT_THAT(Planted("find", archive), IsEmpty());
  EXPECT_EQ(FilesBelow(Data()), before);
  EXPECT_EQ(ModeOf(archive), 0600u);
  std::set<std::string> names;
  for (const auto& file : contents["files"]) names.insert(file["name"].get<std::string>());
  for (const char* name : {"status.json", "doctor.json", "versions.json", "configuration.json",
                           "database/DATA.json", "log/agent.log", "log/list.plist"}) {
    EXPECT_EQ(names.count(name), 1u) << name;
  }
  ExpectRefusal({"doctor", "--bundle", archive.string()}, 2, "exists already");
}

TEST_F(Redaction, ALargeLogIsCutAtItsOldestLinesAndADamagedDatabaseIsNoted) {
  for (const char* name : {"data", "data/log"}) fs::create_directory(folder_ / name);
  std::string lines;
  for (int number = 0; number < 200'000; ++number) {
    lines += "line " + std::to_string(number) + " of a log that is too long\n";
  }
  WriteFile(Data() / "log/agent.log", lines);
  WriteFile(Data() / "Agent.9.24.2.0.sqlite3", "no database");
  const auto contents = Ask({"doctor", "--bundle", (folder_ / "b.zip").string()});
  std::size_t bytes = 0;
  for (const auto& file : contents["files"]) bytes += file["bytes"].get<std::size_t>();
  EXPECT_LE(bytes, 5'000'000u);
  EXPECT_GE(bytes, 4'500'000u);
  EXPECT_THAT(contents["leftOut"].dump(), AllOf(HasSubstr("the oldest 2."), HasSubstr("database")));
  EXPECT_EQ(ContentOf(Data() / "Agent.9.24.2.0.sqlite3"), "no database");
}

}  // namespace
