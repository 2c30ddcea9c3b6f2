#include "cli/ProgramTest.h"
#include "cli/commands/ScanExplanation.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "common/text/Text.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

class FilesCommand : public ProgramTest {
 protected:
  FilesCommand() { ScanOnlyTheTree(); }

  int StoredState() const {
    Common::AgentDatabase opened(Data());
    Common::V2::DataBase dataBase;
    const auto rows =
        dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS");
    return boost::get<int>(rows.at(0).at(0));
  }

  void Write(const std::string& name) const { WriteFile(Tree() / name, "x"); }
};

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
  const auto taken = [&](const char* name, const TextList& words) {
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

  using Files = std::multiset<TextList>;  // without the case of extensions
  Files listed;
  const PlainJson document = Ask({"open", Ask({"files"})["file"]});
  for (const auto& folder : document["paths"]) {
    for (const auto& file : folder["files"]) {
      TextList parts;
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

TEST_F(FilesCommand, ARunThatWasKilledBeginsAgainAtTheNextStart) {
  for (int i = 0; i < 10000; ++i) Write(std::to_string(i) + ".sample");
  EXPECT_EQ(Run({"files"}, "scanning: ").code, 128 + SIGKILL);
  EXPECT_NE(StoredState(), 2);
  EXPECT_THAT(RunWell({"status"}).output,
              ContainsRegex("file inventory: (scann|sav|print)ing, begun 20"));
  EXPECT_FALSE(fs::exists(Data() / "outbox") && !fs::is_empty(Data() / "outbox"));

  Ask({"action", "COMMON_ACTION_INIT"});
  EXPECT_EQ(StoredState(), 2);
  EXPECT_EQ(FilesBelow(Data() / "outbox").size(), 1u);
  EXPECT_EQ(Ask({"files", "--incremental"})["files"]["added"], 0);
}

}  // namespace
