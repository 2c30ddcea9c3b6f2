#include <boost/algorithm/string/replace.hpp>

#include "cli/ProgramTest.h"
#include "common/database/AgentData.h"
#include "common/database/AgentDatabase.h"
#include "common/database/DataBase.h"
#include "host/actions/PeriodicState.h"
#include "host/ipc/Frames.h"
#include "host/ipc/IpcService.h"
#include "support/BackgroundProcess.h"
#include "support/LocalClient.h"
#include "support/PropertyListText.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

int CountOf(const std::string& part, const std::string& text) {
  int count = 0;
  for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

/// A service and users' processes, on a machine whose inventories wait while a gate file exists.
class Service : public ProgramTest {
 protected:
  Service() {
    fs::create_directories(folder_ / "machine/bin");
    const auto tool = folder_ / "machine/bin/system_profiler";
    WriteFile(tool, "#!/bin/sh\nwhile [ -e " + Gate() + " ]; do sleep 0.02; done\n");
    fs::permissions(tool, fs::owner_all);
    options_ = {"--socket",    Socket(), "--machine", (folder_ / "machine").string(),
                "--log-level", "5"};
  }

  std::string Gate() const { return (folder_ / "gate").string(); }
  void CloseGate() const { WriteFile(Gate(), ""); }
  void OpenGate() const { fs::remove(Gate()); }

  std::unique_ptr<BackgroundProcess> Start(const Words& words, const std::string& data = "data") {
    Words line = {NORVIK_BINARY_DIR "/bin/norvik-agent", "--data", (folder_ / data).string()};
    for (const Words& part : {words, options_}) line.insert(line.end(), part.begin(), part.end());
    auto process = std::make_unique<BackgroundProcess>(line, folder_ / (data + ".out"));
    EXPECT_TRUE(Eventually([&] { return !process->Output().empty(); })) << words.front();
    EXPECT_THAT(process->Output(), HasSubstr("runs as process"));
    return process;
  }
  PlainJson Status() const { return Ask({"status"}); }
  bool HasSessions(std::size_t count) const {
    return Eventually([&] { return Status()["agent"]["sessions"].size() == count; });
  }

  bool HasPeriod(unsigned int code, int seconds) const {
    return Eventually([&] {
      const auto periodic = Status()["periodic"];
      return std::any_of(periodic.begin(), periodic.end(), [&](const PlainJson& entry) {
        return entry["code"] == code && entry["periodSeconds"] == seconds;
      });
    });
  }

  std::string Socket() const { return (folder_ / "agent.sock").string(); }
  std::string Log(const std::string& data = "data") const {
    return ContentOf(folder_ / data / "log/agent.log");
  }
  bool Logs(const std::string& text, const std::string& data = "data") const {
    return Eventually([&] { return CountOf(text, Log(data)) > 0; });
  }
  /// The state of a periodic action in the agent data. Writes it first if a new one is given.
  std::string State(unsigned int code, const std::string& toWrite = "") const {
    const LogCapture silence;
    const auto dataBase = std::make_shared<Common::AgentDatabase>(folder_ / "data");
    Common::AgentData data(dataBase, "DATA");
    if (!toWrite.empty()) data.SetString(Host::PeriodicKey(code), toWrite);
    return data.GetOptionalString(Host::PeriodicKey(code)).get_value_or("none");
  }
  std::multiset<std::string> Drives() const {
    const LogCapture silence;
    Common::AgentDatabase dataBase(folder_ / "data");
    std::multiset<std::string> paths;
    const auto table = dataBase.GetTable("KOB_NETWORK_DRIVES", 0, 0, 0);
    for (const auto& row : table ? table->rows : decltype(table->rows)()) paths.insert(row.at(2));
    return paths;
  }
  std::size_t DocumentsInOutbox() const { return Status()["outbox"].size(); }
};

TEST_F(Service, AServiceServesItsUsersAndAdministratorsUntilASignalEndsIt) {
  const auto service = Start({"run"});
  ExpectRefusal({"message", "nobody hears this"}, 1,
                "norvik-agent: no user's process is connected\n");
  const auto first = Start({"user"}, "first");
  const auto second = Start({"user"}, "second");
  ASSERT_TRUE(HasSessions(2));
  EXPECT_TRUE(Logs("Survey is not enabled on profile"));  // logged when a session begins
  RunWell({"message", "two\nlines"});
  for (const auto* user : {first.get(), second.get()}) {
    EXPECT_TRUE(
        Eventually([&] { return CountOf("message: two\nmessage: lines\n", user->Output()) == 1; }));
  }
  EXPECT_THAT(RunWell({"doctor", "user-processes"}).output, HasSubstr("2 are connected"));
  RunWell({"doctor", "service-answers"});
  EXPECT_THAT(RunWell({"notify", "hardware"}).output, HasSubstr("at once"));
  EXPECT_TRUE(Logs("Hardware changes successful"));
  EXPECT_EQ(Run({"notify", "weather"}).code, 2);

  ExpectRefusal({"run"}, 1, "another agent works with the data folder");

  EXPECT_EQ(second->End(SIGINT), 0);
  EXPECT_TRUE(HasSessions(1));
  EXPECT_EQ(service->End(SIGTERM), 0);
  EXPECT_FALSE(fs::exists(Socket()));
  EXPECT_TRUE(Status()["agent"].is_null());
  EXPECT_EQ(Run({"notify", "software"}).code, 1);
  const auto again = Start({"run"});
  EXPECT_TRUE(HasSessions(1));  // the first one is connected again
}

TEST_F(Service, AStopLetsTheActionThatRunsEndAndStartsNoOther) {
  const auto service = Start({"run"});
  CloseGate();
  RunWell({"notify", "software"});
  ASSERT_TRUE(Logs("Generating KOB inventory..."));
  EXPECT_EQ(Status()["agent"]["running"][0]["action"], "1071 ACTION_TOTAL_INVENTORY");
  EXPECT_TRUE(Eventually([&] { return Status()["agent"]["progress"][0]["at"] == "drivers"; }));
  EXPECT_THAT(RunWell({"status"}).output,
              ContainsRegex("progress: machine inventory, total, since 20[^ ]+: drivers, [1-9]"
                            "[0-9]* sections done\n"));
  ::kill(service->Id(), SIGTERM);
  ASSERT_TRUE(Logs("The service stops"));
  EXPECT_THAT(Log(), Not(HasSubstr("KOB Inventory finished")));
  OpenGate();
  EXPECT_EQ(service->Wait(), 0);
  EXPECT_THAT(Log(), ContainsRegex("Section software took [0-9]+ milliseconds"));
  EXPECT_EQ(DocumentsInOutbox(), 1u);
  const std::string log = Log();
  EXPECT_EQ(CountOf(" starts", log.substr(log.find("The service stops"))), 0);
}

TEST_F(Service, AConfigurationThatComesDuringAnInventoryIsKeptAndTheInventoryEnds) {
  const auto file = folder_ / "given.json";
  const auto service = Start({"run"});
  CloseGate();
  RunWell({"notify", "software"});
  ASSERT_TRUE(Logs("Generating KOB inventory..."));
  WriteFile(file, R"({"profileId": 7, "pendingTasksSchedule": {"periodSeconds": 9999}})");
  RunWell({"configure", file.string()});
  EXPECT_TRUE(Logs("Configuration has changed"));
  EXPECT_EQ(ContentOf(folder_ / "data/configuration.json"), ContentOf(file));
  EXPECT_TRUE(Logs("1036 ACTION_INCREMENTAL_INVENTORY does not run"));  // of the configuration
  OpenGate();
  EXPECT_TRUE(Logs("KOB Inventory finished"));
  EXPECT_TRUE(Eventually([&] { return DocumentsInOutbox() == 1; }));
  EXPECT_TRUE(HasPeriod(1046, 9999));

  const auto managed = folder_ / "machine/root/Library/Managed Preferences";
  fs::create_directories(managed);
  WriteFile(managed / "com.norvik.agent.plist",
            PropertyListOf(R"({"pendingTasksSchedule": {"periodSeconds": 8888}})"));
  ::kill(service->Id(), SIGHUP);
  EXPECT_TRUE(HasPeriod(1046, 8888));
  EXPECT_THAT(RunWell({"status"}).output,
              HasSubstr("from the managed preferences: pendingTasksSchedule\n"
                        "from the file: profileId\nby default: "));

  WriteFile(folder_ / "data/configuration.json", "{");
  ::kill(service->Id(), SIGHUP);
  EXPECT_TRUE(Logs("The configuration is not read again: "));
  WriteFile(folder_ / "data/configuration.json", R"({"profileId": 8})");
  ::kill(service->Id(), SIGHUP);
  EXPECT_TRUE(Logs("is read again"));
  WriteFile(file, R"({"profileId": "eight"})");
  EXPECT_EQ(Run({"configure", file.string()}).code, 2);
}

/// A row: name, state of the schedule, seconds until it is due, state at which the process is
/// killed, number of starts of the action after the restart, and state after the restart. In a
/// state, N stands for the time when it is due, L for the time after that.
TEST_F(Service, WhatAKillLeavesOfAScheduleRunsOnceAfterTheRestart) {
  RunWell({"inventory"});
  for (const auto& row : DataOf("cli/run/kills.json")) {
    SCOPED_TRACE(row);
    const long due = system_clock::to_time_t(system_clock::now()) + row[2].get<long>();
    const auto timed = [&](std::string state) {
      boost::replace_all(state, "N", std::to_string(due));
      return boost::replace_all_copy(state, "L", std::to_string(due + 1000));
    };
    const auto reaches = [&](const std::string& state) {
      return Eventually([&] { return State(1036) == timed(state); });
    };
    State(1036, timed(row[1]));
    if (row[4] == 1) CloseGate();
    auto service = Start({"run"});
    EXPECT_TRUE(reaches(row[3])) << State(1036);
    EXPECT_EQ(service->End(SIGKILL), 128 + SIGKILL);
    OpenGate();
    const std::string before = Log();
    service = Start({"run"});
    EXPECT_TRUE(reaches(row[5])) << State(1036);
    EXPECT_EQ(service->End(SIGTERM), 0);
    const std::string since = Log().substr(before.size());
    EXPECT_EQ(CountOf("Action 1036 ACTION_INCREMENTAL_INVENTORY starts", since), row[4]) << since;
    State(1036, " ");
  }
}

TEST_F(Service, AStartWithAKnownConfigurationTakesOnlyInventoriesThatAreDue) {
  const auto file = folder_ / "given.json";
  const auto now = system_clock::to_time_t(system_clock::now());
  WriteFile(file, R"({"inventorySchedule": {"periodSeconds": 86400, "next": )" +
                      std::to_string(now - 40'000) + "}}");
  EXPECT_THAT(RunWell({"configure", file.string()}).output, Not(HasSubstr("failed")));
  State(1072, "432000 " + std::to_string(now + 1000));
  const auto inventoriesOfAStart = [&] {
    const std::string before = Log();
    const auto service = Start({"run"});
    std::this_thread::sleep_for(std::chrono::milliseconds(500));
    EXPECT_EQ(service->End(SIGTERM), 0);
    return CountOf("_INVENTORY starts", Log().substr(before.size()));
  };
  EXPECT_EQ(inventoriesOfAStart(), 0);
  {
    const LogCapture silence;
    Common::AgentDatabase dataBase(folder_ / "data");
    Common::V2::DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(now) - 3 * 86400);
  }
  EXPECT_EQ(inventoriesOfAStart(), 1);
}

std::string MessageFrame(unsigned int code, const std::string& key, const std::string& value) {
  return Host::EncodeFrame(Host::FrameKind::MESSAGE, Host::EncodeMessage({1, code, key, value}));
}

std::string ArchiveOf(int id, const std::string& path) {
  return "22 serialization::archive 18 0 0 " + std::to_string(id) +
         " 2 Z: " + std::to_string(path.size()) + " " + path + " 8 nas.test";
}

TEST_F(Service, ARoundOfTheNetworkDrivesLeavesWhatTheLastUserReported) {
  using Paths = std::multiset<std::string>;
  RunWell({"inventory"});
  // Becomes due after the users are connected: the service then asks all of them.
  State(32001, "0 " + std::to_string(system_clock::to_time_t(system_clock::now()) + 5));
  const auto service = Start({"run"});
  // The other users have no drives here, so this one gets some.
  const LocalClient last(Socket());
  last.Send(Host::EncodeFrame(Host::FrameKind::JOIN, "") +
            MessageFrame(32001, "getNetworkDrives", ArchiveOf(3, "/Volumes/Old")));
  EXPECT_TRUE(Eventually([&] { return Drives() == Paths{"/Volumes/Old"}; }));
  const auto first = Start({"user"}, "first");
  const auto second = Start({"user"}, "second");
  ASSERT_TRUE(HasSessions(3));
  EXPECT_THAT(last.Receive(), HasSubstr("requestNetworkDrives"));
  EXPECT_TRUE(Eventually([&] { return CountOf("OnTruncateNetDrivesTable: IPC", Log()) >= 2; }));
  EXPECT_EQ(Drives(), Paths{});
  last.Send(MessageFrame(1066, "truncateNetDrivesTable", "truncateNetDrivesTable") +
            MessageFrame(32001, "getNetworkDrives", ArchiveOf(1, "/Volumes/It's")) +
            MessageFrame(32001, "getNetworkDrives", "22 serialization::archive 18 0 0 x") +
            MessageFrame(32001, "getNetworkDrives", ArchiveOf(2, "/Volumes/Two")) +
            MessageFrame(32001, "getNetworkDrives", ArchiveOf(1, "/Volumes/It's")));
  EXPECT_TRUE(Eventually([&] { return Drives() == Paths{"/Volumes/It's", "/Volumes/Two"}; }));
  EXPECT_EQ(CountOf("Can not deserialize NetworkDriveInfo: ", Log()), 1);
  EXPECT_THAT(Log(), HasSubstr("Message 32001 \"getNetworkDrives\" of session"));
}

std::string RequestFrame(const std::string& text) {
  return Host::EncodeFrame(Host::FrameKind::REQUEST,
                           PlainJson{{"request", "message"}, {"text", text}}.dump());
}

TEST_F(Service, LargeMessagesInARowAreAllShownWhileTheOutputWaits) {
  const auto service = Start({"run"});
  const auto user = Start({"user"}, "user");
  ASSERT_TRUE(HasSessions(1));
  user->Signal(SIGSTOP);
  const LocalClient administrator(Socket());
  constexpr int COUNT = 30;
  for (int i = 0; i < COUNT; ++i) {
    ASSERT_TRUE(administrator.Send(RequestFrame(std::string(100'000, 'x') + "!")));
  }
  ASSERT_THAT(administrator.Receive(), HasSubstr("queued"));
  user->Signal(SIGCONT);
  EXPECT_TRUE(Eventually([&] { return CountOf("x!\n", user->Output()) == COUNT; }));
}

TEST_F(Service, WhatAUserSendsTooMuchOfIsDroppedAndLoggedOnFewLines) {
  auto service = Start({"run"});
  const LocalClient user(Socket());
  std::string frames = Host::EncodeFrame(Host::FrameKind::JOIN, "");
  const std::string path(9000, 'p');
  for (const auto& archive :
       {std::string("bad"), ArchiveOf(1, path), ArchiveOf(2, "/Volumes/Two")}) {
    const int count = archive == "bad" ? 100 : 1;
    for (int i = 0; i < count; ++i) frames += MessageFrame(32001, "getNetworkDrives", archive);
  }
  ASSERT_TRUE(user.Send(frames));
  EXPECT_TRUE(Eventually([&] { return Drives() == std::multiset<std::string>{"/Volumes/Two"}; }));
  EXPECT_EQ(Status()["agent"]["messages"], 102);
  EXPECT_EQ(service->End(SIGTERM), 0);
  EXPECT_LE(CountOf("Can not deserialize NetworkDriveInfo: ", Log()), 20);
  EXPECT_THAT(Log(),
              ContainsRegex("[0-9]+ lines that user [0-9]+ caused are left out: at most 20 "));
}

TEST_F(Service, StatusSaysThatAnAgentRunsButDoesNotAnswer) {
  EXPECT_THAT(RunWell({"status"}).output, HasSubstr("agent: not running\n"));
  Host::ServiceLimits limits;
  limits.connection.frameBytes = 1;
  const LogCapture silence;
  Host::IpcService busy(Socket(), limits);
  busy.Start({});
  EXPECT_THAT(RunWell({"status"}).output,
              HasSubstr("agent: running, but it does not answer: the agent hung up\n"));
}

}  // namespace
