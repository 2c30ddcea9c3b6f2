#include "host/recording/ToolRecorder.h"

#include <gmock/gmock.h>

#include "platform/ChildProcess.h"
#include "support/Cases.h"
#include "support/Files.h"
#include "support/Surroundings.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;
namespace fs = boost::filesystem;

TEST(ToolRecorder, TakesTheProgramsAtTheBeginningOfPipelines) {
  ExpectRows(DataOf("host/recording/shell-lines.json"), &Host::ProgramsOf);
}

TEST(ToolRecorder, RunsEachCallOnceAndEndsOneThatHangs) {
  TemporaryFolder folder;
  for (const char* name : {"tools", "recording", "work"}) fs::create_directory(folder / name);
  WriteFile(folder / "tools/count", "#!/bin/sh\necho x >>$0.runs\ngrep -c x $0.runs\nexit 3\n");
  WriteFile(folder / "tools/hang", "#!/bin/sh\necho part\nsleep 60 & wait\n");
  fs::permissions(folder / "tools/count", fs::owner_all);
  fs::permissions(folder / "tools/hang", fs::owner_all);
  const Scope path(
      [before = std::string(::getenv("PATH"))] { ::setenv("PATH", before.c_str(), 1); });
  ::setenv("PATH", ((folder / "tools").string() + ":/usr/bin:/bin").c_str(), 1);
  std::string output;
  auto command = Platform::ChildCommand::ShellLine(
      "count a '|b'; count a '|b' | cat; echo $?; hang | cat; count; missing; rm -f none; "
      "/no/tool");
  command.onOutput = [&](std::string_view piece) { output += piece; };
  command.onErrors = [](std::string_view) {};
  {
    Host::ToolRecorder recorder(folder / "recording", folder / "work", std::chrono::seconds(1));
    EXPECT_EQ(recorder.Run(command).exitCode, 127);
    EXPECT_THAT(recorder.UnfinishedCalls(), testing::ElementsAre("hang"));
    EXPECT_THAT(recorder.UnrecordedPrograms(), testing::ElementsAre("/no/tool"));
  }
  EXPECT_EQ(output, "1\n1\n0\n2\n");
  EXPECT_THAT(ContentOf(folder / "recording/answers.txt"),
              testing::MatchesRegex("count a \\?b\\|count-1\\|3\\|0\\.[0-9]+\n"
                                    "hang\\|\\|137\\|1\\.[0-9]+\n"
                                    "count\\|count-2\\|3\\|0\\.[0-9]+\n"));
}

}  // namespace
