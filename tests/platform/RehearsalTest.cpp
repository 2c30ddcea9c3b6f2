#include "platform/Rehearsal.h"

#include <gmock/gmock.h>

#include <boost/filesystem/operations.hpp>
#include <cerrno>
#include <cstdio>

#include "platform/ChildProcess.h"
#include "support/Files.h"
#include "support/TemporaryFolder.h"

namespace Norvik::Platform {
namespace {

namespace fs = boost::filesystem;
using testing::ElementsAre;

TEST(Rehearsal, TellsOfEachRemovalHowItWouldEnd) {
  const Tests::TemporaryFolder folder;
  for (const char* name : {"full", "empty", "shut/inner", "real"}) {
    fs::create_directories(folder / name);
  }
  for (const char* name : {"a", "full/b", "shut/c"}) Tests::WriteFile(folder / name, "");
  fs::create_symlink("real", folder / "link");
  fs::create_symlink("gone", folder / "loose");
  fs::permissions(folder / "shut", fs::owner_read | fs::owner_exe);
  // What goes decides about what comes behind it.
  const char* const names[] = {
      "a/x",           "a",     "a",    "gone",  "full",   "full/b",     "full",
      "link/../empty", "empty", "link", "loose", "shut/c", "shut/inner", "real/.",
      "real/..",       "real/", ""};
  std::vector<int> told;
  {
    const Rehearsal rehearsal;
    for (const char* name : names) {
      told.push_back(RehearseRemoval((folder / name).string()) ? 0 : errno);
    }
    EXPECT_EQ(rehearsal.Steps().size(), std::size(names));
  }
  for (std::size_t i = 0; i < std::size(names); ++i) {
    const int result = std::remove((folder / names[i]).c_str());
    EXPECT_EQ(told[i], result == 0 ? 0 : errno) << i << " " << names[i];
  }
  fs::permissions(folder / "shut", fs::owner_all);
}

TEST(Rehearsal, TellsOfEachProgramWhetherItWouldStart) {
  const Tests::TemporaryFolder folder;
  Tests::WriteFile(folder / "text", "#!/bin/sh\n");
  Tests::WriteFile(folder / "tool", "#!/bin/sh\necho > \"$0.ran\"\n");
  fs::permissions(folder / "tool", fs::owner_all);
  const std::vector<std::string> commands[] = {{"true"},
                                               {"no such program"},
                                               {(folder / "tool").string(), "a b"},
                                               {"/bin"},
                                               {"/no/such"},
                                               {(folder / "text").string()},
                                               {"/bin/true/one"},
                                               {""},
                                               {}};
  for (const auto& words : commands) {
    ChildCommand command;
    command.words = words;
    ChildResult told;
    {
      const Rehearsal rehearsal;
      told = RunChild(command);
      EXPECT_FALSE(fs::exists(folder / "tool.ran"));
    }
    const ChildResult done = RunChild(command);
    fs::remove(folder / "tool.ran");
    const std::string name = words.empty() ? "nothing" : words[0];
    EXPECT_EQ(told.started, done.started) << name;
    EXPECT_EQ(told.problem, done.problem) << name;
    EXPECT_EQ(told.exitCode, done.exitCode) << name;
  }
}

TEST(Rehearsal, RunsWhatOnlyAsksAndWritesDownItsWords) {
  const Rehearsal rehearsal;
  EXPECT_THROW(Rehearsal(), std::logic_error);
  std::string output;
  ChildCommand command;
  command.words = {"echo", "it's", ""};
  command.onOutput = [&](std::string_view piece) { output += piece; };
  RunChild(command);
  command.onlyAsks = true;
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
