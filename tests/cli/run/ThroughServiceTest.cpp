#include "cli/ProgramTest.h"
#include "host/ipc/Frames.h"
#include "support/BackgroundProcess.h"
#include "support/LocalClient.h"

namespace {

using namespace Norvik;
using namespace Norvik::Tests;

/// Commands beside a service on the same data folder, or beside one whose inventories wait while a
/// gate file exists.
class ThroughService : public ProgramTest {
 protected:
  ThroughService() {
    const auto tool = folder_ / "machine/bin/system_profiler";
    fs::create_directories(tool.parent_path());
    WriteFile(tool, "#!/bin/sh\nwhile [ -e " + Gate().string() + " ]; do sleep 0.02; done\n");
    fs::permissions(tool, fs::owner_all);
    ScanOnlyTheTree();
    fs::rename(folder_ / "configuration.json", Data() / "configuration.json");
    options_.clear();
  }

  std::unique_ptr<BackgroundProcess> Start(const Words& words) const {
    Words line = {NORVIK_BINARY_DIR "/bin/norvik-agent", "--data", Data().string()};
    line.insert(line.end(), words.begin(), words.end());
    return std::make_unique<BackgroundProcess>(line, folder_ / (words.front() + ".out"));
  }
  /// A service that has taken its first inventory.
  /// @param words options of `run`
  std::unique_ptr<BackgroundProcess> StartService(Words words) const {
    words.insert(words.begin(), "run");
    auto service = Start(words);
    // While it starts, its database may not be readable yet.
    EXPECT_TRUE(Eventually([&] {
      auto status = PlainJson::parse(Run({"status", "--json"}).output, nullptr, false);
      return !status["agent"].is_null() && status["agent"]["running"].empty() &&
             !status["lastInventory"].is_null();
    }));
    return service;
  }
  bool Logs(const std::string& text) const {
    return Eventually(
        [&] { return ContentOf(Data() / "log/agent.log").find(text) != std::string::npos; });
  }
  std::unique_ptr<BackgroundProcess> StartGated() const {
    return StartService({"--machine", (folder_ / "machine").string()});
  }
  std::unique_ptr<BackgroundProcess> StartWaitingInventory() const {
    WriteFile(Gate(), "");
    auto command = Start({"inventory"});
    EXPECT_TRUE(Eventually(
        [&] { return command->Output().find("retrieving drivers") != std::string::npos; }));
    return command;
  }
  fs::path Gate() const { return folder_ / "gate"; }

  /// What a command prints and returns, without times and sizes.
  PlainJson Outcome(Words words) const {
    words.push_back("--json");
    const Answer answer = Run(words);
    PlainJson json = PlainJson::parse(answer.output, nullptr, false);
    if (!json.is_object()) return {answer.code, answer.errors, answer.output};
    for (const char* part : {"sections", "phases"}) {
      std::set<std::string> names;
      for (const auto& entry : json.value(part, PlainJson())) names.insert(entry["name"]);
      json[part] = names;
    }
    // Others may make folders meanwhile.
    for (const char* part : {"seconds", "bytes", "records", "folders"}) json.erase(part);
    return {answer.code, answer.errors, json};
  }
};

TEST_F(ThroughService, CommandsHaveTheSameOutcomeAsWithoutIt) {
  const Words commands[] = {{"inventory"},
                            {"files", "--scheduled"},
                            {"files", "--scheduled"},
                            {"files", "--incremental"},
                            {"action", "1002", "path=" + Tree().string() + "/"},
                            {"action", "1071"},
                            {"action", "1037"},
                            {"action", "1062", "cmd=true"},
                            {"action", "9999"},
                            {"action", "1011", "x:bool=1"}};
  const auto outcomes = [&] {
    WriteFile(Tree() / "a.sample", "x");
    fs::last_write_time(Tree() / "a.sample", 1'000'000'000);
    std::vector<PlainJson> all;
    for (const Words& words : commands) all.push_back(Outcome(words));
    return all;
  };
  Ask({"inventory"});
  const auto alone = outcomes();
  fs::remove_all(Data() / "Agent.9.24.2.0.sqlite3");
  fs::remove_all(Data() / "previous");
  const auto service = StartService({});
  const auto through = outcomes();
  for (std::size_t i = 0; i < alone.size(); ++i) {
    EXPECT_EQ(through[i], alone[i]) << testing::PrintToString(commands[i]);
  }
  EXPECT_EQ(alone[0][2]["sections"].size(), 24u);
  EXPECT_EQ(alone[1][2]["files"]["total"], 1);
  EXPECT_THAT(RunWell({"files"}).output, ContainsRegex("scanning: .*\n(.*\n)*files: 1; "));
  EXPECT_THAT(RunWell({"inventory"}).output, ContainsRegex("retrieving software\n"));
}

TEST_F(ThroughService, AnInventoryThatRunsAndOptionsOfOnesOwnAreRefused) {
  const auto service = StartGated();
  const auto first = StartWaitingInventory();
  const Answer second = Run({"inventory", "--json"});
  EXPECT_EQ(second.code, 1);
  EXPECT_EQ(second.errors, "{\"message\":\"KOB Inventory already running\"}\n");
  fs::remove(Gate());
  EXPECT_EQ(first->Wait(), 0);
  ExpectRefusal({"inventory", "--log-level", "7"}, 1, "leave out --log-level, or end the agent");
  ExpectRefusal({"files", "--config", "x", "--user-process"}, 1, "--config, --user-process");
}

TEST_F(ThroughService, ACommandEndsWithOneLineWhenTheServiceEndsAndTheServiceGoesOnWithoutIt) {
  auto service = StartGated();
  for (const int signal : {SIGINT, SIGTERM, SIGKILL}) {
    const auto command = StartWaitingInventory();
    if (signal == SIGINT) {
      EXPECT_EQ(command->End(SIGINT), 128 + SIGINT);
      fs::remove(Gate());
      EXPECT_TRUE(Eventually([&] { return Ask({"status"})["agent"]["running"].empty(); }));
      continue;
    }
    service->Signal(signal);
    EXPECT_EQ(command->Wait(), 1);
    EXPECT_THAT(command->Output(), testing::EndsWith("\nnorvik-agent: the running agent ended "
                                                     "before the action did; its log says how "
                                                     "far that was\n"));
    fs::remove(Gate());
    service->Wait();
    service = StartGated();
  }
}

TEST_F(ThroughService, NoOtherUserMayRunAnAction) {
  if (::geteuid() != 0) GTEST_SKIP() << "only root can be another user";
  const auto service = StartService({});
  for (const fs::path& folder : {folder_.Path(), Data()}) fs::permissions(folder, fs::all_all);
  const pid_t child = ::fork();
  if (child == 0) {
    if (::setuid(65534) != 0) ::_exit(2);
    const LocalClient client((Data() / "agent.sock").string());
    const PlainJson request = {
        {"request", "run"}, {"code", 1013}, {"parameters", {{"cmd", "touch " + Gate().string()}}}};
    client.Send(Host::EncodeFrame(Host::FrameKind::REQUEST, request.dump()));
    ::_exit(client.Receive().empty() ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_TRUE(Logs("sent a request, which only root and the user of the service may"));
  EXPECT_FALSE(fs::exists(Gate()));
}

}  // namespace
