#include "module/Actions/Mac/RemoteAdministration.h"

#include <sys/utsname.h>
#include <utmp.h>
#include <utmpx.h>

#include <boost/variant/get.hpp>
#include <future>

#include "module/Actions/Mac/AdministeredMachine.h"
#include "module/Actions/Mac/ToolText.h"
#include "module/Actions/ZebAgentUninstaller.h"
#include "platform/LoginRecords.h"
#include "platform/compat/SentAppleEvents.h"
#include "support/BackgroundProcess.h"
#include "support/RecordFiller.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using namespace std::string_literals;
using RemoteAdministrationTest = AdministeredMachine;

constexpr unsigned int ALL[] = {1011, 1013, 1012, 1002, 1003, 1000, 1019, 1020, 1015, 1016, 1017,
                                1018, 1021, 1022, 1006, 1007, 1010, 1045, 1008, 1009, 1024, 1023,
                                1026, 1025, 1032, 1029, 1030, 1031, 1001, 1039, 1062, 1070, 1073};
constexpr const char* NAMES[] = {"cmd",  "type", "name", "password", "domain", "id",
                                 "path", "file", "ext",  "date",     "Guid"};

/// Counts statuses from several threads.
struct CountingCommunications final : Common::ICommunicationSystem {
  bool ProcessMessage(const Common::IRestRequest&, Common::IRestResponse&) override {
    return false;
  }
  void ReportTaskStatus(const Common::TaskResponseInfo&) override { ++statuses; }
  void NewFileOnOutbox() override {}
  std::atomic<int> statuses{0};
};

std::string Login(short type, int id, const std::string& line, const std::string& user,
                  const std::string& computer) {
  utmpx entry{};
  entry.ut_type = type;
  entry.ut_pid = id;
  std::copy_n(line.begin(), std::min(line.size(), sizeof(entry.ut_line)), entry.ut_line);
  std::copy(user.begin(), user.end(), entry.ut_user);
  std::copy(computer.begin(), computer.end(), entry.ut_host);
  return std::string(reinterpret_cast<const char*>(&entry), sizeof(entry));
}

class RemoteAdministrationRequests : public AdministeredMachine,
                                     public testing::WithParamInterface<Json> {};

TEST_P(RemoteAdministrationRequests, HaveTheirOutcomeAndTheSameInARehearsal) {
  const Json& row = GetParam();
  for (const auto& [path, content] : PartOf(row, "files").items()) AddFile(path, content);
  for (const auto& [path, script] : PartOf(row, "tools").items()) AddTool(path, script);
  for (const auto& [path, script] : PartOf(row, "recorded tools").items()) {
    AddRecordedTool(path, script);
  }
  const tests::CommaLocale comma;
  RunRequests(row["requests"]);
  for (const std::string line : PartOf(row, "logs")) {
    EXPECT_TRUE(host.log.Holds(line[0] - '0', line.substr(2))) << line;
  }
  if (row.contains("left")) {
    EXPECT_EQ(Json(FilesBelow(folder / "root")), row["left"]);
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, RemoteAdministrationRequests,
                         ValuesIn(DataOf("module/Actions/Mac/requests/machines.json")),
                         [](const auto& row) -> std::string { return row.param["name"]; });

TEST_F(RemoteAdministrationTest, ParametersOfAnyKindAreSurvived) {
  const auto tryAll = [&](const Common::ActionParameters& parameters) {
    for (const unsigned int code : ALL) {
      try {
        module.Run(code, parameters);
      } catch (const boost::bad_get&) {
      }
    }
  };
  tryAll({});
  Common::ActionParameters values;
  for (const char* name : NAMES) values.Set(name, true);
  tryAll(values);
  for (const auto& text : {""s, "|||\\"s, "-1"s, std::string(200000, 'a'), "99999999999999999999"s,
                           "%1%%s%n{}\n'\"`$(exit 3)&\\"s, "\0x"s, "´/../../\xF0\x9F\x98\x80"s}) {
    for (const char* name : NAMES) {
      values.Set(name, wxString::FromUTF8(text.data(), text.size()));
    }
    tryAll(values);
    values.Set("type", wxString("0"));
    tryAll(values);
  }
  EXPECT_TRUE(FilesBelow(folder.Path()).empty());
}

TEST_F(RemoteAdministrationTest, ARehearsalDoesNothingWhateverIsAsked) {
  AddTool("bin/evil", "echo x >> \"$M/evidence\"");
  for (const char* tool : {"launchctl", "lpadmin", "sharing", "sh", "rm"}) {
    AddTool(std::string("bin/") + tool, "[ \"$1\" = -l ] || evil");
  }
  AddTool("bin/lpstat", "echo 'device for $(evil): x'");
  for (const char* path : {"x/a", "x/evil", "Users/ada/b.evil", "home/c.evil"}) {
    AddFile(std::string("root/") + path);
  }
  for (const auto& place : {host.Outbox(), host.Previous()}) WriteFile(place / "a.jsonkob", "x");
  const auto files = FilesBelow(folder.Path());
  const auto documents = FilesBelow(host.Folder());
  Common::ActionParameters values;
  const Platform::Rehearsal rehearsal;
  for (const auto& text :
       {"evil"s, "$(evil)"s, "`evil`"s, ";evil;"s, "|evil|/x/a|/x"s, "a\nevil\n"s, "root"s, "0"s,
        "-1"s, std::to_string(::getpid()), "20260101000000"s}) {
    for (const char* name : NAMES) values.Set(name, wxString::FromUTF8(text.c_str()));
    values.Set("Guid", wxString("agent-1"));
    for (const char* type : {"0", "1", "2", "3"}) {
      values.Set("type", wxString(type));
      for (const unsigned int code : ALL) module.Run(code, values);
      values.Set("cmd", wxString("evil"));
    }
  }
  EXPECT_EQ(FilesBelow(folder.Path()), files);
  EXPECT_EQ(FilesBelow(host.Folder()), documents);
  EXPECT_THAT(changes->made, Each(EndsWith(" 0")));
  EXPECT_TRUE(Platform::TakeSentAppleEvents().empty());
  std::set<int> kinds;
  for (const auto& step : rehearsal.Steps()) kinds.insert(step.kind);
  EXPECT_EQ(kinds.size(), 6U) << "a change of each kind was asked for";
}

TEST_F(RemoteAdministrationTest, AnAgentIsRemovedOnlyByItsOwnIdentifier) {
  AddRecordedTool("bin/sh");
  RunRequests("agent.txt");
  AddFile("root/opt/local/norvik/UninstallZebAgent.sh");
  EXPECT_EQ(Request(1070, {{"Guid", "agent-1"}}),
            (Lines{"ran sh /opt/local/norvik/UninstallZebAgent.sh",
                   "ran sh /opt/local/norvik/UninstallAgent.sh"}));
  EXPECT_TRUE(host.log.Holds(4, "Starting ZEB agent uninstall"));
  EXPECT_TRUE(host.log.Holds(4, "Starting agent uninstall"));
  host.identification.reset();
  const std::string reason = "Uninstall aborted: parameters not available";
  EXPECT_EQ(Request(1070, {{"Guid", ""}}), (Lines{"status 8 " + reason, "error " + reason}));
}

TEST_F(RemoteAdministrationTest, WithoutACheckOnlyDocumentsGo) {
  for (const auto& place : {host.Outbox(), host.Previous(), host.Work()}) {
    for (const char* name : {"a.jsonkob", "b.jsonrud", "jsonkob"}) WriteFile(place / name, "x");
  }
  EXPECT_EQ(RehearseAndRequest(1073), std::make_pair(Lines{}, Lines{}));
  EXPECT_EQ(NamesIn(host.Outbox()), (Lines{"b.jsonrud", "jsonkob"}));
  EXPECT_EQ(NamesIn(host.Previous()), (Lines{"b.jsonrud", "jsonkob"}));
  EXPECT_EQ(NamesIn(host.Work()).size(), 3U);
}

TEST(ToolText, ConnectionsOfTextThatIsNoUtf8AreNone) {
  const std::string text = "Active Internet connections (including servers)\n\na b c d e\n";
  EXPECT_EQ(ReadConnections(text).size(), 1U);
  EXPECT_EQ(ReadConnections(text + "\xFF").size(), 0U);
}

TEST(ToolText, AShareIsLeftOutOfAListingThatIsCutAnywhere) {
  const std::string shares = "name:\tbooks\npath:\t/b\nname:\tkept\npath:\t/k\n";
  EXPECT_EQ(WithoutShare(shares, "books"), "name:\tkept\npath:\t/k\n");
  for (std::size_t end = 0; end <= shares.size(); ++end) {
    const std::string rest = WithoutShare(shares.substr(0, end), "books");
    EXPECT_EQ(rest.find("/b"), std::string::npos) << end;
  }
}

TEST_F(RemoteAdministrationTest, AFailureOfTheSiblingAgentIsOnlyLogged) {
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_TRUE(host.log.Holds(4, "The ZEB agent is not installed"));
  fs::create_directories(folder / "root/opt/local");
  fs::create_symlink("norvik", folder / "root/opt/local/norvik");
  ZebAgentUninstaller().UninstallZebAgent();
  EXPECT_THAT(host.log.Texts(2), ElementsAre(StartsWith("Failed to uninstall ZEB agent: ")));
}

TEST_F(RemoteAdministrationTest, FoldersAreListed) {
  const tests::ScopedLocale locale("C.UTF-8");
  AddFile("root/in/café", "1234");
  AddFile("root/in/.hidden");
  fs::create_directories(folder / "root/in/.sub");
  fs::create_directories(folder / "root/in/a b");
  fs::create_directories(folder / "root/empty");
  fs::create_symlink("gone", folder / "root/in/dangling");
  ASSERT_EQ(::mkfifo((folder / "root/in/pipe").c_str(), 0600), 0);
  fs::create_directory_symlink("in", folder / "root/link");
  fs::create_symlink("café", folder / "root/in/to café");
  fs::create_directory_symlink(".sub", folder / "root/in/to .sub");
  AddFile("root/in/not text \xFF");
  fs::create_directories(folder / "root/no file");
  AddFile("root/no file/not text \xFF");
  ASSERT_EQ(::mkfifo((folder / "root/no file/pipe").c_str(), 0600), 0);
  fs::last_write_time(folder / "root/in/café", 1767225600);
  fs::last_write_time(folder / "root/in/.hidden", -1);
  RunRequests("listings.txt");
}

TEST_F(RemoteAdministrationTest, FilesOfAnExtensionAreRemovedFromTheUsersFolders) {
  for (const char* path : {"Users/ada/deep/a.tmp", "Users/Shared/b.tmp", "Users/ada/a.txt",
                           "Users/c.tmp", "Library/d.tmp"}) {
    AddFile(std::string("root/") + path);
  }
  const auto ends = [](const std::string& missing) {
    return Lines{"status 7", "status 2",
                 "warning Directory " + missing + " does not exist or is not accessible"};
  };
  EXPECT_EQ(RehearseAndRequest(1001, {{"ext", "tmp"}}),
            std::make_pair(ends("/home"), ends("/home")));
  EXPECT_EQ(FilesBelow(folder / "root"),
            (std::set<std::string>{"Users/ada/a.txt", "Users/c.tmp", "Library/d.tmp"}));
  AddFile("root/home/e.txt");
  fs::remove_all(folder / "root/Users");
  EXPECT_EQ(Request(1001, {{"ext", ".txt"}}), ends("/Users"));
  EXPECT_EQ(FilesBelow(folder / "root"), std::set<std::string>{"Library/d.tmp"});
  EXPECT_TRUE(host.log.Holds(4, "Delete extension .txt finished"));
}

TEST(ToolText, TheProcessorShareIsTheLineAfterTheHeading) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "100"},          {"%CPU", "100"},
      {"%CPU\n", ""},       {"%CPU\n \t12 .5 \r\n99\n", "12.5"},
      {"%CPU\n3,7", "3,7"}, {"%CPU\n1\xFF\n", "100"}};
  for (const auto& [output, share] : cases) EXPECT_EQ(ReadProcessorShare(output), share) << output;
  EXPECT_EQ(PercentText(1, 3), "33.33");
  EXPECT_EQ(PercentText(1, 0), "0");
}

TEST_F(RemoteAdministrationTest, ARealProcessIsListedAndKilled) {
  recorded.reset();
  BackgroundProcess sleeper({"/bin/sleep", "60"}, folder / "output");
  const std::string id = std::to_string(sleeper.Id());
  changes->killable = sleeper.Id();
  EXPECT_THAT(Request(1011),
              Contains(MatchesRegex(id + "\\|sleep\\|/.*\\|[0-9.]+\\|[0-9]+\\|[0-9.]+")));
  EXPECT_EQ(Request(1012, {{"id", id}}), Lines{"kill " + id + " 9"});
  EXPECT_EQ(sleeper.Wait(), 128 + SIGKILL);
}

TEST_F(RemoteAdministrationTest, TwoRemovalsOfSoftwareRunOneAfterTheOther) {
  AddTool("bin/slow",
          "echo begin >> \"$M/log\"; until [ -e \"$M/go\" ]; do sleep 0.01; done\n"
          "echo end >> \"$M/log\"; exit 1");
  const auto communications = std::make_shared<CountingCommunications>();
  host.dependencies->communications = communications;
  ModuleUnderTest shared(host);
  const auto remove = [&] { shared.Run(1062, WithText("cmd", "slow")); };
  std::thread first(remove);
  std::thread second(remove);
  // One has reported its start twice and runs; the other has reported it once and waits.
  while (communications->statuses < 3) std::this_thread::yield();
  AddFile("go");
  first.join();
  second.join();
  EXPECT_EQ(communications->statuses, 6);
  EXPECT_EQ(ContentOf(folder / "log"), "begin\nend\nbegin\nend\n");
}

TEST_F(RemoteAdministrationTest, SessionsOfARecordedMachineAreOnThatMachine) {
  recorded.reset();
  const Platform::RecordedMachine machine(NORVIK_SOURCE_DIR "/tests/machines/intel-t2");
  const Lines sessions = Request(1024);
  ASSERT_EQ(sessions.size(), 4u);
  EXPECT_EQ(sessions[1], "149|1|anna||Darwin|annas-skerry-pro.local|console");
}

TEST_F(RemoteAdministrationTest, SessionsAreTheEntriesAtATerminal) {
  const std::string fullLine = "pts" + std::string(29, 'x');
  AddFile("utmp", Login(BOOT_TIME, 0, "~", "reboot", "") +
                      Login(USER_PROCESS, 501, "console", "ada", "") +
                      Login(DEAD_PROCESS, 77, "ttys001", "", "") +
                      Login(USER_PROCESS, 9, fullLine, "bob", "192.0.2.7"));
  recorded.reset();
  ::utmpxname((folder / "utmp").c_str());
  utsname machine{};
  ASSERT_EQ(::uname(&machine), 0);
  const std::string names = std::string("|") + machine.sysname + "|" + machine.nodename + "|";
  const Lines expected = {"Id|Status|UserName|DomainName|ClientName|StationName|Type",
                          "501|1|ada|" + names + "console", "77|1||" + names + "ttys001",
                          "9|1|bob|192.0.2.7" + names + fullLine};
  EXPECT_EQ(Request(1024), expected);
  std::future<Lines> second;
  {
    Platform::LoginRecords other;
    second = std::async(std::launch::async, [&] { return Request(1024); });
    EXPECT_EQ(second.wait_for(milliseconds(20)), std::future_status::timeout);
    for (int left = 4; left > 0; --left) EXPECT_NE(other.Next(), nullptr) << left;
  }
  EXPECT_EQ(second.get(), expected) << "after another walk";
  ::utmpxname(_PATH_UTMP);
}

TEST_F(RemoteAdministrationTest, MoreFilesThanTheLoopCanCountAreRefused) {
  AddFile("root/x");
  EXPECT_THAT(Request(1000, {{"file", "/x" + std::string(65535, '|')}}),
              ElementsAre("text Invalid Parameter file",
                          "error A request to delete 65536 files is refused: at most 65535 are "
                          "allowed, and none is deleted"));
  EXPECT_TRUE(fs::exists(folder / "root/x"));
  EXPECT_THAT(Request(1000, {{"file", "/x" + std::string(65534, '|')}}), IsEmpty());
  EXPECT_FALSE(fs::exists(folder / "root/x"));
}

TEST_F(RemoteAdministrationTest, PowerAndLogOutAreEventsToTheSystemAndTheClockIsSetInWholeSeconds) {
  RunRequests("power-refused.txt");
  Platform::SetAppleEventAnswer(0);
  changes->clockCanBeSet = true;
  RunRequests("power.txt");
  EXPECT_TRUE(host.log.Holds(5, "The time  to set is: tomorrow"));
  EXPECT_TRUE(host.log.Holds(5, "Hora 1767225600"));
}

}  // namespace
}  // namespace Norvik::KOB
