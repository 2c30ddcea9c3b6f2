#include <set>

#include "cli/ProgramTest.h"
#include "cli/commands/ScanExplanation.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "common/text/Text.h"
#include "support/Files.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using PlainJson = nlohmann::json;
namespace fs = boost::filesystem;
using testing::HasSubstr;

/// The program scans only one folder of the disk.
class FilesCommand : public ProgramTest {
 protected:
  FilesCommand() {
    fs::create_directories(Data());
    fs::create_directories(Tree());
    const PlainJson configuration = {{"excludedPaths", AllBut(Tree())},
                                     {"excludedFiles", {"left out.sample"}},
                                     {"includedExtensions", {"sample"}}};
    WriteFile(folder_ / "configuration.json", configuration.dump());
    options_ = {"--config", (folder_ / "configuration.json").string()};
  }

  int StoredState() const {
    Common::AgentDatabase opened(Data());
    Common::V2::DataBase dataBase;
    const auto rows =
        dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS");
    return boost::get<int>(rows.at(0).at(0));
  }

  fs::path Tree() const { return folder_ / "tree"; }
  void Write(const std::string& name) const { WriteFile(Tree() / name, "x"); }
};

TEST_F(FilesCommand, TellsOfAllFilesAndThenOfWhatHasChanged) {
  for (const char* name : {"a.sample", "b.sample", "\"fileStatus\":1.sample", "other.txt"}) {
    Write(name);
  }
  const PlainJson total = Ask({"files", "--incremental"});
  EXPECT_EQ(total["kind"], "total");
  EXPECT_THAT(total["fallback"], HasSubstr("no file of a former"));
  EXPECT_EQ(total["files"], PlainJson({{"total", 3}}));
  EXPECT_EQ(total["statuses"].back()["status"], 2);
  const std::string sealed = total["file"];
  EXPECT_EQ(fs::path(sealed).extension(), ".jsonrud");
  const PlainJson document = Ask({"open", sealed});
  EXPECT_EQ(document["typeInventory"], 0);
  EXPECT_EQ(document["paths"][0]["pathName"], Tree().string());
  EXPECT_EQ(document["paths"][0]["files"].size(), 3u);

  fs::remove(Tree() / "a.sample");
  fs::last_write_time(Tree() / "b.sample", 1'000'000'000);
  for (const char* name : {"c.sample", "d.sample"}) Write(name);
  const PlainJson changes = Ask({"files", "--incremental"});
  EXPECT_EQ(changes["kind"], "incremental");
  EXPECT_EQ(changes["files"], PlainJson({{"added", 2}, {"removed", 1}, {"modified", 1}}));
  Words phases;
  for (const auto& phase : changes["phases"]) phases.push_back(phase["name"]);
  EXPECT_EQ(phases, (Words{"scanning", "saving", "printing"}));
  EXPECT_GT(changes["folders"], 1);

  const std::string shown = RunWell({"files", "--incremental"}).output;
  EXPECT_THAT(shown, HasSubstr("scanning: "));
  EXPECT_THAT(shown, HasSubstr("document: none, there is nothing to tell"));
}

/// Each file of a document: its folder and the fields of its record.
std::set<PlainJson> FilesOf(const PlainJson& document) {
  std::set<PlainJson> files;
  for (const auto& folder : document["paths"]) {
    for (const auto& file : folder["files"]) {
      files.insert(PlainJson::array({folder["pathName"], file}));
    }
  }
  return files;
}

TEST_F(FilesCommand, DiffAndApplyLeadFromOneDocumentToTheOther) {
  for (const char* name : {"a.sample", "b.sample", "c.sample"}) Write(name);
  // Each document replaces the previous one in the outbox.
  const auto taken = [&](const char* name, const std::vector<std::string>& words) {
    fs::rename(Ask(words)["file"].get<std::string>(), folder_ / name);
    return (folder_ / name).string();
  };
  const std::string before = taken("before.jsonrud", {"files"});
  fs::remove(Tree() / "a.sample");
  fs::last_write_time(Tree() / "b.sample", 1'000'000'000);
  Write("it's new.sample");
  const std::string changes = taken("changes.jsonrud", {"files", "--incremental"});
  const std::string after = taken("after.jsonrud", {"files"});
  const auto plain = [&](const char* name, const std::string& sealed) {
    WriteFile(folder_ / name, Ask({"open", sealed}).dump());
    return (folder_ / name).string();
  };
  const std::pair<Words, std::string> rows[] = {
      // and a document with the same files
      {{"diff", before, after}, changes},
      {{"diff", plain("before", before), after}, changes},
      {{"apply", before, changes}, after},
      {{"apply", before, plain("changes", changes)}, after}};
  for (const auto& [words, same] : rows) {
    EXPECT_EQ(FilesOf(Ask(words)), FilesOf(Ask({"open", same}))) << words[0];
  }
  EXPECT_TRUE(Ask({"diff", after, after}).is_null());
  ExpectRefusal({"apply", changes, before}, 1, "");
}

TEST_F(FilesCommand, RefusesScheduledOnesOnTheDayOfATotalOne) {
  Write("a.sample");
  EXPECT_TRUE(Ask({"status"})["fileInventory"].is_null());
  EXPECT_EQ(Ask({"files", "--scheduled"})["files"]["total"], 1);
  ExpectRefusal({"files", "--scheduled"}, 1, "already ended on this day");
  ExpectRefusal({"files", "--scheduled", "--incremental"}, 1,
                "blocked due RUD complet executed today");
  const PlainJson state = Ask({"status"})["fileInventory"];
  EXPECT_EQ(state["stateName"], "finished");
  EXPECT_EQ(state["files"], 1);
  EXPECT_GE(state["end"]["seconds"], state["begin"]["seconds"]);
}

TEST_F(FilesCommand, ExplainsWhichRuleDecidesAboutAPath) {
  fs::create_directories(Tree() / "folder.sample");
  fs::create_symlink(Tree(), Tree() / "link.sample");
  for (const char* name :
       {"a.sample", "c.Sample", "left out.sample", ".sample", "folder.sample/d.sample"}) {
    Write(name);
  }
  for (const auto& row : DataOf("cli/explained-paths.json")) {
    const PlainJson answer = Ask({"explain", (Tree() / row[0].get<std::string>()).string()});
    EXPECT_EQ(answer["rule"], row[1].get<std::string>()) << answer;
  }
}

/// Files and links in a folder, with names that the rules could confuse.
void WriteOddNames(const fs::path& folder) {
  fs::create_directories(folder);
  for (const std::string end :
       {"", ".", ".sample", ".SAMPLE", ".Sample", ".sample.", "sample", ".more", ".exe", ".EXE"}) {
    for (const char* stem : {"a", "", ".a", "a.b", "left out", "ü", "two\nlines", " "}) {
      if (const std::string name = stem + end; name.size() > 1) WriteFile(folder / name, "x");
    }
    fs::create_symlink("a.sample", folder / ("link" + end));
  }
}

TEST_F(FilesCommand, ExplainsEveryPathAsTheInventoryListsIt) {
  for (const char* name : {"", "f.sample", ".hidden", "excluded", "excluded/f", "slash"}) {
    WriteOddNames(Tree() / name);
  }
  Common::KobConfigurationInfo configuration;
  configuration.excludedPaths = AllBut(Tree());
  for (const char* name : {"excluded", "slash/"}) {
    configuration.excludedPaths.push_back((Tree() / name).string());
  }
  configuration.excludedFiles = {"left out.sample"};
  configuration.additionalExtensions = {"EXE", "more"};
  configuration.includedExtensions = {"sample"};
  const PlainJson texts = {{"excludedPaths", configuration.excludedPaths},
                           {"excludedFiles", configuration.excludedFiles},
                           {"additionalExtensions", configuration.additionalExtensions},
                           {"includedExtensions", configuration.includedExtensions}};
  WriteFile(folder_ / "configuration.json", texts.dump());

  using Files = std::multiset<std::vector<std::string>>;  // without the case of extensions
  Files listed;
  const PlainJson document = Ask({"open", Ask({"files"})["file"]});
  for (const auto& folder : document["paths"]) {
    for (const auto& file : folder["files"]) {
      std::vector<std::string> parts;
      for (const PlainJson& part : {folder["pathName"], file["filename"], file["extension"]}) {
        parts.push_back(part.get<std::string>());
      }
      listed.insert(parts);
    }
  }
  Files explained;
  for (const auto& entry : fs::recursive_directory_iterator(Tree())) {
    const fs::path& path = entry.path();
    if (!Cli::ExplainScan(Common::ScanRules(configuration), path.string()).listed) continue;
    explained.insert({path.parent_path().string(), path.stem().string(),
                      Common::ToUpper(path.extension().string().substr(1))});
  }
  EXPECT_EQ(listed, explained);
  EXPECT_FALSE(listed.empty());
}

TEST_F(FilesCommand, TheCheckOfAConfigurationWarnsOfWhatWillSurprise) {
  const PlainJson configuration = {
      {"excludedPaths", {Tree().string(), Tree().string() + "/", "/no such", "relative"}},
      {"excludedFiles", {"name.sample", "folder/name.sample"}},
      {"includedExtensions", {"Txt", ".TXT", "txt", "EXE"}},
      {"additionalExtensions", {"CPL", "exe", "EXE"}},
      {"server", {{"address", "a"}, {"caFile", "/no such.pem"}}}};
  WriteFile(folder_ / "surprising.json", configuration.dump());
  Words warned;
  const auto file = (folder_ / "surprising.json").string();
  const PlainJson answer = Ask({"configure", file, "--check"});
  for (const auto& warning : answer["warnings"]) {
    if (warning["value"] != "") warned.push_back(warning["value"]);
  }
  EXPECT_EQ(warned, (Words{Tree().string() + "/", "/no such", "relative", "folder/name.sample",
                           "Txt", "CPL", "EXE", "/no such.pem"}));
  EXPECT_EQ(answer["sources"]["server"], "file");
  EXPECT_FALSE(fs::exists(Data() / "configuration.json"));
}

TEST_F(FilesCommand, ARunThatWasKilledBeginsAgainAtTheNextStart) {
  for (int i = 0; i < 10000; ++i) Write(std::to_string(i) + ".sample");
  EXPECT_EQ(Run({"files"}, "scanning: ").code, 128 + SIGKILL);
  EXPECT_NE(StoredState(), 2);
  EXPECT_THAT(RunWell({"status"}).output,
              testing::ContainsRegex("file inventory: (scann|sav|print)ing, begun 20"));
  EXPECT_FALSE(fs::exists(Data() / "outbox") && !fs::is_empty(Data() / "outbox"));

  Ask({"action", "COMMON_ACTION_INIT"});
  EXPECT_EQ(StoredState(), 2);
  EXPECT_EQ(FilesBelow(Data() / "outbox").size(), 1u);
  EXPECT_EQ(Ask({"files", "--incremental"})["files"]["added"], 0);
}

}  // namespace
