#include "cli/AgentProgram.h"
#include "cli/RecordedCommands.h"
#include "support/Test.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
using Words = std::vector<std::string>;

/// Runs the program in this process, on a bare machine, where scans see only one folder.
class Rehearsals : public testing::Test {
 protected:
  Rehearsals() : workingDirectory_(fs::current_path()) {
    fs::current_path(folder_.Path());
    for (const char* name : {"machine/root/x", "machine/root/Users/ada", "tree"}) {
      fs::create_directories(folder_ / name);
    }
    for (const char* name : {"x/a", "Users/ada/b.old", "Users/ada/c.txt"}) {
      WriteFile(folder_ / "machine/root" / name, "x");
    }
    const Json configuration = {{"excludedPaths", AllBut(folder_ / "tree")},
                                {"includedExtensions", {"sample"}}};
    WriteFile(folder_ / "tree/a.sample", "x");
    WriteFile(folder_ / "configuration.json", configuration.dump());
  }
  ~Rehearsals() override { fs::current_path(workingDirectory_); }

  Json Run(Words words) {
    const Words front = {"norvik-agent", "--json",
                         "--machine",    (folder_ / "machine").string(),
                         "--module",     NORVIK_MODULE,
                         "--data",       Data().string(),
                         "--config",     (folder_ / "configuration.json").string()};
    words.insert(words.begin(), front.begin(), front.end());
    std::ostringstream output;
    errors_.str("");
    Cli::RunAgentProgram(words, output, errors_);
    return Json::parse(output.str(), nullptr, false);
  }
  Json Rehearse(Words words) {
    words.insert(words.begin(), {"action", "--rehearse"});
    return Run(words);
  }
  fs::path Data() const { return folder_ / "data"; }
  std::map<std::string, std::string> Everything() const {
    std::map<std::string, std::string> files;
    for (const auto& name : FilesBelow(folder_.Path())) {
      // A collector writes this to the working directory, even in a rehearsal.
      if (name != "./temp") files[name] = ContentOf(folder_ / name);
    }
    return files;
  }

  const FixedFilesLock lock_;
  TemporaryFolder folder_;
  fs::path workingDirectory_;
  std::ostringstream errors_;
};

TEST_F(Rehearsals, ReportEveryCodeAndChangeNothing) {
  EXPECT_TRUE(Rehearse({"1036"}).contains("rehearsal")) << errors_.str();
  EXPECT_FALSE(fs::exists(Data()));
  ASSERT_EQ(Run({"action", "1071", "--really"})["statuses"].back()["status"], 2) << errors_.str();
  ASSERT_EQ(Run({"action", "1037", "--really"})["statuses"].back()["status"], 2) << errors_.str();
  const Json actions = Run({"actions"});
  const auto before = Everything();
  WriteFile(Data() / ".rehearsal-killed/identity.json", "x");
  const RecordedCommands commands;
  for (const Json& action : actions) {
    const std::string name = action["name"];
    const Json rehearsed = Rehearse({name, "name=$(x)", "cmd=gone", "type=0", "id=999999999",
                                     "path=/x", "file=/x/a", "ext=old", "Guid=x", "message=hello"});
    EXPECT_TRUE(rehearsed.contains("rehearsal")) << name << ": " << errors_.str();
    EXPECT_EQ(Everything(), before) << name;
  }
  for (const char* tool : {"launchctl start", "launchctl stop", "lpadmin", "sharing -r"}) {
    EXPECT_THAT(commands.Texts(), Not(Contains(HasSubstr(tool))));
  }
}

TEST_F(Rehearsals, ReportWhatTheActionThenDoesAndAnswers) {
  for (const auto& row : DataOf("cli/rehearsals.json")) {
    Words request = row.at("request");
    Json rehearsed = Rehearse(request);
    EXPECT_EQ(Chosen(rehearsed["rehearsal"], row["reports"]), row["reports"]) << row;
    rehearsed.erase("rehearsal");
    request.insert(request.begin(), {"action", "--really"});
    Json done = Run(request);
    // The statuses of the actions that it starts at once come after its own.
    Json& statuses = done["statuses"];
    while (statuses.size() > rehearsed["statuses"].size()) statuses.erase(statuses.size() - 1);
    EXPECT_EQ(rehearsed, done) << row << errors_.str();
  }
}

TEST_F(Rehearsals, ReportWhichDocumentWouldBeSentAndWhichStateWouldChange) {
  const auto names = [](const Json& list, const char* key) {
    Words texts;
    for (const auto& item : list) texts.push_back(item[key]);
    return texts;
  };
  const Json machine = Rehearse({"1071"})["rehearsal"]["changes"];
  EXPECT_THAT(names(machine["files"], "file"), Contains(MatchesRegex("outbox/.+\\.jsonkob")));
  EXPECT_THAT(names(machine["values"], "key"), Contains("KOB_INVENTORY"));
  const Json files = Rehearse({"1037"})["rehearsal"]["changes"];
  EXPECT_THAT(names(files["files"], "file"), Contains(MatchesRegex("outbox/.+\\.jsonrud")));
  EXPECT_THAT(names(files["tables"], "table"), Contains("RUD2_LAST_INVENTORY"));
}

}  // namespace
