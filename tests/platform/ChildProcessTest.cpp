#include "platform/ChildProcess.h"

#include <sys/wait.h>

#include <cerrno>
#include <chrono>

#include "platform/Accounts.h"
#include "platform/FileDescriptor.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Platform;

struct Printed {
  ChildResult result;
  std::string output;
  std::string errors;
};

Printed RunShell(const std::string& script, const ChildAccount* account = nullptr) {
  Printed printed;
  ChildCommand command;
  command.words = {"/bin/sh", "-c", script};
  command.account = account;
  command.onOutput = [&](std::string_view piece) { printed.output += piece; };
  command.onErrors = [&](std::string_view piece) { printed.errors += piece; };
  printed.result = RunChild(command);
  return printed;
}

ChildAccount OwnAccount() { return {::geteuid(), ::getegid(), "nobody-special", "/", "/bin/sh"}; }

class ChildProcess : public testing::TestWithParam<bool> {
 protected:
  Printed Run(const std::string& script) const { return RunShell(script, account_); }

  const ChildAccount own_ = OwnAccount();
  const ChildAccount* const account_ = GetParam() ? &own_ : nullptr;
};

TEST_P(ChildProcess, KeepsTheChannelsApartAndReportsHowItEnds) {
  const std::string mebibyte(1048576, '\0');
  const struct {
    const char* script;
    std::string output, errors;
    int exitCode;
  } cases[] = {{"echo out; echo err >&2; exit 7", "out\n", "err\n", 7},
               {"cat; echo no input", "no input\n", "", 0},
               {"kill -PIPE $$; echo alive", "", "", 128 + SIGPIPE},
               {"for i in 1 2 3; do head -c 1048576 /dev/zero >&$((1 + i % 2)); done", mebibyte,
                mebibyte + mebibyte, 0}};
  const auto former = ::signal(SIGPIPE, SIG_IGN);
  for (const auto& row : cases) {
    const Printed printed = Run(row.script);
    EXPECT_TRUE(printed.result.started) << row.script;
    EXPECT_TRUE(printed.output == row.output) << row.script;
    EXPECT_TRUE(printed.errors == row.errors) << row.script;
    EXPECT_EQ(printed.result.exitCode, row.exitCode) << row.script;
  }
  ::signal(SIGPIPE, former);
}

TEST_P(ChildProcess, GivesTheChildNoneOfTheOtherDescriptors) {
  const FileDescriptor low(::open("/dev/null", O_RDONLY));
  const FileDescriptor high(::fcntl(low.Get(), F_DUPFD, 200));
  ASSERT_EQ(high.Get(), 200);
  // The shell itself may hold one above 9 for its own use.
  EXPECT_EQ(Run("for n in 3 4 5 6 7 200; do [ -e /dev/fd/$n ] && echo $n; done; true").output, "");
}

TEST_P(ChildProcess, LeavesNoZombieWhenASinkThrows) {
  ChildCommand command;
  command.words = {"yes"};
  command.account = account_;
  command.onOutput = [](std::string_view) { throw std::runtime_error("full"); };
  EXPECT_THROW(RunChild(command), std::runtime_error);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_P(ChildProcess, EndsAtItsLimitsAndNotWithWhatItLeavesRunning) {
  using Limit = ChildResult::Limit;
  const struct {
    const char* script;
    std::size_t printed;
    Limit limit;
  } cases[] = {{"sleep 50 & echo started", 8, Limit::NONE},
               {"echo begun; sleep 50; true", 6, Limit::TIME},
               {"exec >&- 2>&-; sleep 50", 0, Limit::TIME},
               {"yes", 100'000, Limit::OUTPUT}};
  const auto begin = std::chrono::steady_clock::now();
  for (const auto& row : cases) {
    std::size_t printed = 0;
    ChildCommand command = ChildCommand::ShellLine(row.script);
    command.account = account_;
    command.timeLimit = std::chrono::seconds(1);
    command.outputLimit = 100'000;
    command.onOutput = [&](std::string_view piece) { printed += piece.size(); };
    const ChildResult result = RunChild(command);
    EXPECT_EQ(result.limit, row.limit) << row.script;
    EXPECT_EQ(printed, row.printed) << row.script;
    EXPECT_EQ(result.exitCode, row.limit == Limit::NONE ? 0 : 128 + SIGKILL) << row.script;
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(25));
}

TEST_P(ChildProcess, SaysWhyAProgramDoesNotStart) {
  const std::pair<std::vector<std::string>, int> cases[] = {
      {{"/no/such/program"}, ENOENT},
      {{"no-such-program-in-the-path"}, ENOENT},
      {{"/etc/passwd"}, EACCES},
      {{}, EINVAL},
      {{""}, EINVAL},
      {{"/bin/echo", std::string("a\0b", 3)}, EINVAL}};
  for (const auto& [words, error] : cases) {
    ChildCommand command;
    command.words = words;
    command.account = account_;
    const ChildResult result = RunChild(command);
    EXPECT_FALSE(result.started) << (words.empty() ? "" : words[0]);
    EXPECT_EQ(result.problem, std::generic_category().message(error));
  }
}

INSTANTIATE_TEST_SUITE_P(BothWays, ChildProcess, testing::Bool(), [](const auto& way) {
  return way.param ? "ForAnAccount" : "ForThisProcess";
});

TEST(ChildOfAnAccount, RunsInTheHomeWithASmallEnvironment) {
  ChildAccount account = OwnAccount();
  account.home = "/usr";
  const Printed printed = RunShell("pwd; echo $HOME $USER", &account);
  EXPECT_EQ(printed.output, "/usr\n/usr nobody-special\n");
}

TEST(ChildOfAnAccount, IsThatUserOrDoesNotRun) {
  const auto nobody = AccountOf("nobody");
  ASSERT_TRUE(nobody);
  const Printed printed = RunShell("id -u; id -G", &*nobody);
  if (::geteuid() == 0) {
    EXPECT_EQ(printed.output.substr(0, printed.output.find('\n')), std::to_string(nobody->user));
    EXPECT_EQ(printed.output.find("\n0 "), std::string::npos);
  } else {
    EXPECT_FALSE(printed.result.started);
  }
}

}  // namespace
