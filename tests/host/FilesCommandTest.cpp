#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <boost/filesystem/operations.hpp>
#include <nlohmann/json.hpp>
#include <set>

#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "platform/ChildProcess.h"
#include "support/Files.h"
#include "support/OnlyBelow.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik;
using Json = nlohmann::json;
namespace fs = boost::filesystem;
using testing::HasSubstr;

/// Runs the program itself on a disk of which it sees one folder.
class FilesCommand : public testing::Test {
 protected:
  FilesCommand() {
    fs::create_directories(Data());
    fs::create_directories(Tree());
    const Json configuration = {{"excludedPaths", Tests::AllBut(Tree())},
                                {"excludedFiles", {"left out.sample"}},
                                {"includedExtensions", {"sample"}}};
    Tests::WriteFile(folder_ / "configuration.json", configuration.dump());
  }

  /// Answers the exit code.
  int Run(const std::vector<std::string>& words) {
    // Its number comes first, as the shell becomes the program.
    Platform::ChildCommand command;
    command.words = {"/bin/sh", "-c", "echo $$; exec \"$@\"", "sh",
                     std::string(NORVIK_BINARY_DIR) + "/bin/norvik-agent"};
    command.words.insert(command.words.end(), words.begin(), words.end());
    for (const auto& word : {std::string("--data"), Data().string(), std::string("--config"),
                             (folder_ / "configuration.json").string()}) {
      command.words.push_back(word);
    }
    std::string printed;
    output_.clear();
    errors_.clear();
    command.onOutput = [&](std::string_view piece) {
      printed += piece;
      if (killAt_.empty() || printed.find(killAt_) == std::string::npos) return;
      killAt_.clear();
      ::kill(std::stoi(printed), SIGKILL);
    };
    command.onErrors = [&](std::string_view piece) { errors_ += piece; };
    const int code = Platform::RunChild(command).exitCode;
    output_ = printed.substr(printed.find('\n') + 1);
    return code;
  }
  Json RunWell(std::vector<std::string> words) {
    words.push_back("--json");
    EXPECT_EQ(Run(words), 0) << errors_;
    return Json::parse(output_, nullptr, false);
  }
  int StoredState() const {
    Common::AgentDatabase opened(Data());
    Common::V2::DataBase dataBase;
    const auto rows =
        dataBase.ExecuteSentence("select id_state_harverting from RUD2_CURRENT_STATUS");
    return boost::get<int>(rows.at(0).at(0));
  }

  fs::path Data() const { return folder_ / "data"; }
  fs::path Tree() const { return folder_ / "tree"; }
  void Write(const std::string& name) const { Tests::WriteFile(Tree() / name, "x"); }

  Tests::TemporaryFolder folder_;
  std::string killAt_;  ///< kill the program once it has printed this
  std::string output_;
  std::string errors_;
};

TEST_F(FilesCommand, TellsOfAllFilesAndThenOfWhatHasChanged) {
  for (const char* name : {"a.sample", "b.sample", "\"fileStatus\":1.sample", "other.txt"}) {
    Write(name);
  }
  const Json total = RunWell({"files", "--incremental"});
  EXPECT_EQ(total["kind"], "total");
  EXPECT_THAT(total["fallback"], HasSubstr("no file of a former"));
  EXPECT_EQ(total["files"], Json({{"total", 3}}));
  EXPECT_EQ(total["statuses"].back()["status"], 2);
  const std::string sealed = total["file"];
  EXPECT_EQ(fs::path(sealed).extension(), ".jsonrud");
  const Json document = RunWell({"open", sealed});
  EXPECT_EQ(document["typeInventory"], 0);
  EXPECT_EQ(document["paths"][0]["pathName"], Tree().string());
  EXPECT_EQ(document["paths"][0]["files"].size(), 3u);

  fs::remove(Tree() / "a.sample");
  fs::last_write_time(Tree() / "b.sample", 1'000'000'000);
  for (const char* name : {"c.sample", "d.sample"}) Write(name);
  const Json changes = RunWell({"files", "--incremental"});
  EXPECT_EQ(changes["kind"], "incremental");
  EXPECT_EQ(changes["files"], Json({{"added", 2}, {"removed", 1}, {"modified", 1}}));
  EXPECT_EQ(changes["phases"].size(), 3u);

  EXPECT_EQ(Run({"files", "--incremental"}), 0) << errors_;
  EXPECT_THAT(output_, HasSubstr("scanning: "));
  EXPECT_THAT(output_, HasSubstr("document: none, there is nothing to tell"));
}

/// Each file of a document in one text.
std::set<std::string> FilesOf(const Json& document) {
  std::set<std::string> files;
  for (const auto& folder : document["paths"]) {
    for (const auto& file : folder["files"]) {
      files.insert(folder["pathName"].get<std::string>() + " " + file.dump());
    }
  }
  return files;
}

TEST_F(FilesCommand, DiffAndApplyLeadFromOneDocumentToTheOther) {
  for (const char* name : {"a.sample", "b.sample", "c.sample"}) Write(name);
  // Each takes the place of the one before it in the outbox.
  const auto taken = [&](const char* name, const std::vector<std::string>& words) {
    fs::rename(RunWell(words)["file"].get<std::string>(), folder_ / name);
    return (folder_ / name).string();
  };
  const std::string before = taken("before.jsonrud", {"files"});
  fs::remove(Tree() / "a.sample");
  fs::last_write_time(Tree() / "b.sample", 1'000'000'000);
  Write("it's new.sample");
  const std::string changes = taken("changes.jsonrud", {"files", "--incremental"});
  const std::string after = taken("after.jsonrud", {"files"});
  const auto plain = [&](const char* name, const std::string& sealed) {
    Tests::WriteFile(folder_ / name, RunWell({"open", sealed}).dump());
    return (folder_ / name).string();
  };
  const struct {
    std::vector<std::string> words;
    std::string same;  ///< document with the same files
  } rows[] = {{{"diff", before, after}, changes},
              {{"diff", plain("before", before), after}, changes},
              {{"apply", before, changes}, after},
              {{"apply", before, plain("changes", changes)}, after}};
  for (const auto& row : rows) {
    EXPECT_EQ(FilesOf(RunWell(row.words)), FilesOf(RunWell({"open", row.same}))) << row.words[0];
  }
  EXPECT_TRUE(RunWell({"diff", after, after}).is_null());
  EXPECT_EQ(Run({"apply", changes, before}), 1);
  EXPECT_EQ(std::count(errors_.begin(), errors_.end(), '\n'), 1) << errors_;
}

TEST_F(FilesCommand, RefusesScheduledOnesOnTheDayOfATotalOne) {
  Write("a.sample");
  EXPECT_TRUE(RunWell({"status"})["fileInventory"].is_null());
  EXPECT_EQ(RunWell({"files", "--scheduled"})["files"]["total"], 1);
  const auto refusalOf = [&](const std::vector<std::string>& words) {
    EXPECT_EQ(Run(words), 1);
    EXPECT_EQ(output_, "");
    EXPECT_EQ(std::count(errors_.begin(), errors_.end(), '\n'), 1) << errors_;
    return errors_;
  };
  EXPECT_THAT(refusalOf({"files", "--scheduled"}), HasSubstr("already ended on this day"));
  EXPECT_THAT(refusalOf({"files", "--scheduled", "--incremental"}),
              HasSubstr("blocked due RUD complet executed today"));
  const Json state = RunWell({"status"})["fileInventory"];
  EXPECT_EQ(state["stateName"], "finished");
  EXPECT_EQ(state["files"], 1);
  EXPECT_GE(state["end"]["seconds"], state["begin"]["seconds"]);
}

TEST_F(FilesCommand, ExplainsWhichRuleDecidesAboutAPath) {
  fs::create_directories(Tree() / "folder.sample");
  fs::create_symlink(Tree(), Tree() / "link.sample");
  for (const char* name : {"a.sample", "B.SAMPLE", "c.Sample", "left out.sample", ".sample",
                           "tiny.txt", "folder.sample/d.sample"}) {
    Write(name);
  }
  const struct {
    std::string path;
    const char* rule;
  } rows[] = {{"a.sample", "listed"},
              {"B.SAMPLE", "listed"},
              {"folder.sample/../folder.sample/d.sample", "listed"},
              {"c.Sample", "unwanted-extension"},
              {"tiny.txt", "unwanted-extension"},
              {"left out.sample", "excluded-name"},
              {".sample", "no-extension"},
              {"link.sample", "link"},
              {"link.sample/a.sample", "link"},
              {"folder.sample/", "folder"},
              {"a.sample/b.sample", "absent"},
              {"none.sample", "absent"},
              {"../data/a.sample", "excluded-folder"}};
  std::set<std::string> listed;
  for (const auto& row : rows) {
    const Json answer = RunWell({"explain", (Tree() / row.path).string()});
    EXPECT_EQ(answer["rule"], row.rule) << row.path << ": " << answer;
    if (answer["listed"] == true) {
      listed.insert(fs::path(answer["path"].get<std::string>()).replace_extension().string());
    }
  }
  // The inventory itself agrees.
  const Json document = RunWell({"open", RunWell({"files"})["file"]});
  std::set<std::string> found;
  for (const auto& folder : document["paths"]) {
    for (const auto& file : folder["files"]) {
      const std::string name = file["filename"];
      found.insert(folder["pathName"].get<std::string>() + "/" + name);
    }
  }
  EXPECT_EQ(found, listed);
}

TEST_F(FilesCommand, TheCheckOfAConfigurationWarnsOfWhatWillSurprise) {
  const Json configuration = {
      {"excludedPaths", {Tree().string(), Tree().string() + "/", "/no such", "relative"}},
      {"excludedFiles", {"name.sample", "folder/name.sample"}},
      {"includedExtensions", {"Txt", ".TXT", "txt", "EXE"}},
      {"additionalExtensions", {"CPL", "exe", "EXE"}},
      {"server", {{"address", "a"}, {"caFile", "/no such.pem"}}}};
  Tests::WriteFile(folder_ / "surprising.json", configuration.dump());
  std::vector<std::string> warned;
  const auto file = (folder_ / "surprising.json").string();
  const Json answer = RunWell({"configure", file, "--check"});
  for (const auto& warning : answer["warnings"]) {
    if (warning["value"] != "") warned.push_back(warning["value"]);
  }
  EXPECT_THAT(warned,
              testing::ElementsAre(Tree().string() + "/", "/no such", "relative",
                                   "folder/name.sample", "Txt", "CPL", "EXE", "/no such.pem"));
  EXPECT_FALSE(fs::exists(Data() / "configuration.json"));
}

TEST_F(FilesCommand, ARunThatWasKilledBeginsAgainAtTheNextStart) {
  for (int i = 0; i < 10000; ++i) Write(std::to_string(i) + ".sample");
  killAt_ = "scanning: ";
  EXPECT_EQ(Run({"files"}), 128 + SIGKILL);
  EXPECT_NE(StoredState(), 2);
  EXPECT_EQ(Run({"status"}), 0) << errors_;
  EXPECT_THAT(output_, testing::ContainsRegex("file inventory: (scann|sav|print)ing, begun 20"));
  EXPECT_FALSE(fs::exists(Data() / "outbox") && !fs::is_empty(Data() / "outbox"));

  RunWell({"action", "COMMON_ACTION_INIT"});
  EXPECT_EQ(StoredState(), 2);
  EXPECT_EQ(Tests::FilesBelow(Data() / "outbox").size(), 1u);
  EXPECT_EQ(RunWell({"files", "--incremental"})["files"]["added"], 0);
}

}  // namespace
