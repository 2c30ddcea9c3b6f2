#include <pwd.h>

#include "common/commands/CommandRunner.h"
#include "common/commands/CommandWords.h"
#include "common/commands/Execute.h"
#include "common/text/Text.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

TEST(CommandRunner, GivesTheOutputUnchangedAndLogsTheErrorChannelLineByLine) {
  const std::tuple<const char*, std::string, Matcher<TextList>> cases[] = {
      {"printf 'a\\n\\n b\\000c\\n' | cat", std::string("a\n\n b\0c\n", 8), IsEmpty()},
      {"head -c 1048576 /dev/zero | tr '\\0' x; head -c 1048576 /dev/zero | tr '\\0' y >&2",
       std::string(1048576, 'x'), Not(IsEmpty())},
      {"echo one >&2; echo >&2; printf two >&2; exit 3", "", ElementsAre("one", "two")},
      {"no-such-tool-of-norvik -x", "", ElementsAre(_)}};
  for (const auto& [command, output, logged] : cases) {
    const LogCapture log;
    EXPECT_TRUE(CommandRunner::ExecCommand(command) == output) << command;
    EXPECT_THAT(log.Texts(Logger::LEVEL_DETAIL), logged) << command;
  }
}

TEST(CommandRunner, EndsAQueryAtItsLimitsAndTakesItAsAMissingTool) {
  CommandRunner::SetQueryLimit(seconds(1));
  const std::pair<const char*, const char*> cases[] = {{"echo begun; sleep 50; true", "too long"},
                                                       {"head -c 67108865 /dev/zero", "too much"}};
  for (const auto& [command, reason] : cases) {
    const LogCapture log;
    EXPECT_TRUE(CommandRunner::ExecCommand(command).empty()) << command;
    EXPECT_THAT(log.Texts(Logger::LEVEL_WARNING), ElementsAre(HasSubstr(reason))) << command;
  }
  CommandRunner::SetQueryLimit(seconds(0));
}

TEST(CommandWords, AreSplitAsAShellDoes) {
  const Json tables = DataOf("common/commands/words.json");
  ExpectRows(
      tables.front(), +[](const std::string& line) {
        const auto words = SplitCommandWords(line);
        return words ? Json(*words) : Json();
      });
}

TEST(Execute, RunsWithoutAShellAndKeepsBothChannels) {
  Execute both("sh -c 'echo out; echo err >&2; exit 5'");
  EXPECT_EQ(both.Run(""), 5);
  EXPECT_EQ(both.Output(), "out\nerr\n");

  Execute plain("echo '$HOME'");
  EXPECT_EQ(plain.Run("'a  b' ; c"), 0);
  EXPECT_EQ(plain.Output(), "$HOME a  b ; c\n");
}

TEST(Execute, SaysWhyNothingWasStarted) {
  for (const auto* command : {"", "echo 'open", "/no/such/program", "/tmp"}) {
    Execute execute(command);
    EXPECT_EQ(execute.Run(""), -1) << command;
    EXPECT_FALSE(execute.Output().empty()) << command;
  }
}

TEST(Execute, RunsAsAnExistingUserOrSession) {
  // Whoever runs the test: only a program of an account gets none of this environment.
  const passwd* const account = ::geteuid() == 0 ? ::getpwnam("nobody") : ::getpwuid(::geteuid());
  ASSERT_NE(account, nullptr);
  const std::string user = account->pw_name;
  ::setenv("NORVIK_TEST_SECRET", "secret", 1);
  Execute execute("sh -c 'id -un; echo [$NORVIK_TEST_SECRET]'");
  EXPECT_EQ(execute.RunAs(WxStringFromStdString(user), "", "", ""), 0);
  EXPECT_EQ(execute.Output(), user + "\n[]\n");
  ::unsetenv("NORVIK_TEST_SECRET");
  EXPECT_EQ(execute.RunAs("no-such-user-of-norvik", "", "", ""), -1);

  int processId = 17;
  EXPECT_EQ(execute.RunAs(&processId, -12345), -1);
  EXPECT_EQ(processId, 17);
  EXPECT_NE(execute.Output().find("-12345"), std::string::npos);
}

}  // namespace
