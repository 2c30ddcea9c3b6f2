#include "platform/Rehearsal.h"

#include <boost/algorithm/string/replace.hpp>
#include <cerrno>

#include "platform/ChildProcess.h"
#include "support/Test.h"

namespace Norvik::Platform {
namespace {

namespace fs = boost::filesystem;
using testing::ElementsAre;

TEST(Rehearsal, ReportsHowEachRemovalWouldEnd) {
  const Tests::TemporaryFolder folder;
  for (const char* name : {"full", "empty", "shut/inner", "real"}) {
    fs::create_directories(folder / name);
  }
  for (const char* name : {"a", "full/b", "shut/c"}) Tests::WriteFile(folder / name, "");
  fs::create_symlink("real", folder / "link");
  fs::create_symlink("gone", folder / "loose");
  fs::permissions(folder / "shut", fs::owner_read | fs::owner_exe);
  const auto names = Tests::DataOf("platform/rehearsed.json")["removed in this order"];
  std::vector<int> rehearsed;
  {
    const Rehearsal rehearsal;
    for (const std::string name : names) {
      const int result = GetSystemChanges()->Remove((folder / name).string());
      rehearsed.push_back(result == 0 ? 0 : errno);
    }
    EXPECT_EQ(rehearsal.Steps().size(), names.size());
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    const int result = GetSystemChanges()->Remove((folder / names[i].get<std::string>()).string());
    EXPECT_EQ(rehearsed[i], result == 0 ? 0 : errno) << i << " " << names[i];
  }
  fs::permissions(folder / "shut", fs::owner_all);
}

TEST(Rehearsal, ReportsWhetherEachProgramWouldStart) {
  const Tests::TemporaryFolder folder;
  Tests::WriteFile(folder / "text", "#!/bin/sh\n");
  Tests::WriteFile(folder / "tool", "#!/bin/sh\necho > \"$0.ran\"\n");
  fs::permissions(folder / "tool", fs::owner_all);
  for (const Tests::Json& words : Tests::DataOf("platform/rehearsed.json")["programs"]) {
    ChildCommand command;
    words.get_to(command.words);
    for (auto& word : command.words) boost::replace_all(word, "$", folder.Path().string());
    ChildResult rehearsed;
    {
      const Rehearsal rehearsal;
      rehearsed = RunChild(command);
      EXPECT_FALSE(fs::exists(folder / "tool.ran"));
    }
    const ChildResult done = RunChild(command);
    fs::remove(folder / "tool.ran");
    EXPECT_EQ(rehearsed.started, done.started) << words;
    EXPECT_EQ(rehearsed.problem, done.problem) << words;
    EXPECT_EQ(rehearsed.exitCode, done.exitCode) << words;
  }
}

TEST(Rehearsal, RunsQueriesAndNotesTheirWords) {
  SetSystemChanges(nullptr);
  ASSERT_TRUE(GetSystemChanges()) << "the real ones";
  const Rehearsal rehearsal;
  EXPECT_THROW(Rehearsal(), std::logic_error);
  std::string output;
  ChildCommand command;
  command.words = {"echo", "it's", ""};
  command.onOutput = [&](std::string_view piece) { output += piece; };
  RunChild(command);
  command.isQuery = true;
  RunChild(command);
  EXPECT_EQ(output, "it's \n");
  const auto steps = rehearsal.Steps();
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[0].kind, RehearsedStep::PROGRAM);
  EXPECT_EQ(steps[1].kind, RehearsedStep::ASKED);
  for (const auto& step : steps) EXPECT_EQ(step.text, "echo 'it'\\''s' ''");
}

}  // namespace
}  // namespace Norvik::Platform
