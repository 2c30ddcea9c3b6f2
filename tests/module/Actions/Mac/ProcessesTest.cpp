#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <atomic>
#include <thread>
#include <utility>

#include "module/Actions/Mac/AdministeredMachine.h"
#include "module/Actions/Mac/ProcessText.h"
#include "support/CommaLocale.h"
#include "support/Files.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

/// A process of the test's own, which sleeps until it is killed.
class Sleeper {
 public:
  Sleeper() {
    char name[] = "sleep";
    char time[] = "60";
    char* const words[] = {name, time, nullptr};
    if (::posix_spawnp(&id, name, nullptr, nullptr, words, environ) != 0) id = 0;
  }
  ~Sleeper() {
    if (id > 0) ::kill(id, SIGKILL);
    Wait();
  }
  /// The signal that ended it.
  int Wait() {
    int status = 0;
    if (id > 0 && ::waitpid(std::exchange(id, 0), &status, 0) < 0) return -1;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }
  pid_t id = 0;
};

/// Counts statuses that come from several threads.
struct CountingCommunications final : Common::ICommunicationSystem {
  bool ProcessMessage(const Common::IRestRequest&, Common::IRestResponse&) override {
    return false;
  }
  void ReportTaskStatus(const Common::TaskResponseInfo&) override { ++statuses; }
  void NewFileOnOutbox() override {}
  std::atomic<int> statuses{0};
};

using RemoteProcessesTest = AdministeredMachine;

TEST(ProcessText, TheShareIsTheLineBehindTheHeading) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "100"},          {"%CPU", "100"},
      {"%CPU\n", ""},       {"%CPU\n \t12 .5 \r\n99\n", "12.5"},
      {"%CPU\n3,7", "3,7"}, {"%CPU\n1\xFF\n", "100"}};
  for (const auto& [output, share] : cases) EXPECT_EQ(ReadProcessorShare(output), share) << output;
  EXPECT_EQ(PercentText(1, 3), "33.33");
  EXPECT_EQ(PercentText(1, 0), "0");
}

TEST_F(RemoteProcessesTest, ProcessesAreListedAndWhatIsNotKnownOfThemIsNamed) {
  AddFile("processes.json",
          R"([{"pid": 1, "name": "init-like", "path": "/sbin/init-like", "footprint": 4096},
              {"pid": 0, "name": "kernel"}, {"pid": 1077}])");
  AddTool("root/bin/ps", "[ \"$*\" = '-o %cpu -p 1' ] && printf '%%CPU\\n  1.5\\n'");
  const tests::CommaLocale comma;
  Follow("processes.txt");
}

TEST_F(RemoteProcessesTest, ARealProcessIsListedAndKilled) {
  Sleeper sleeper;
  const std::string id = std::to_string(sleeper.id);
  TheWrappedCalls().killable = sleeper.id;
  EXPECT_THAT(
      Ask(1011),
      testing::Contains(testing::MatchesRegex(id + "\\|sleep\\|/.*\\|100\\|[0-9]+\\|[0-9.]+")));
  EXPECT_EQ(Ask(1012, {{"id", id}}), Lines{"kill " + id + " 9"});
  EXPECT_EQ(sleeper.Wait(), SIGKILL);
}

TEST_F(RemoteProcessesTest, ProgramsRunByTheirTypeAndSoftwareIsRemovedByThem) {
  AddRecordedTool("bin/setup", "exit $1");
  Follow("programs.txt");
  EXPECT_TRUE(host.log.Holds(5, "There are missing parameters"));
  EXPECT_TRUE(host.log.Holds(4, "Execution Result:3"));
}

TEST_F(RemoteProcessesTest, TwoRemovalsOfSoftwareRunOneAfterTheOther) {
  AddTool("bin/slow",
          "echo begin >> \"$M/log\"; until [ -e \"$M/go\" ]; do sleep 0.01; done\n"
          "echo end >> \"$M/log\"; exit 1");
  const auto communications = std::make_shared<CountingCommunications>();
  host.dependencies->communications = communications;
  ModuleUnderTest shared(host);
  const auto remove = [&] { shared.Run(1062, WithText("cmd", "slow")); };
  std::thread first(remove);
  std::thread second(remove);
  // One has told its start twice and runs; the other has told it once and waits.
  while (communications->statuses < 3) std::this_thread::yield();
  AddFile("go");
  first.join();
  second.join();
  EXPECT_EQ(communications->statuses, 6);
  EXPECT_EQ(ContentOf(folder / "log"), "begin\nend\nbegin\nend\n");
}

}  // namespace
}  // namespace Norvik::KOB
