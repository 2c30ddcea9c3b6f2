#include "host/server/ServerLink.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <future>

#include "common/rest/PendingTasks.h"
#include "common/rest/RemoteTaskDownloader.h"
#include "host/server/ManagementServer.h"
#include "support/Cases.h"
#include "support/FakeActionClock.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
using namespace Norvik::Tests;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;
using State = ManagementServer::State;

constexpr auto NEVER = Delivery::TimePoint::max();

const Json& Cases(const char* name) { return DataOf("host/server/server-cases.json")[name]; }

TaskResponseInfo StatusOf(const std::string& requestId) {
  TaskResponseInfo status;
  status.requestId = requestId;
  return status;
}

/// What a sealed file begins with.
const std::string SEAL = "NRVKSEAL\x01";

/// An agent's side of the road, with an outbox of two kinds of files.
struct Agent {
  explicit Agent(const ManagementServer& server) {
    options.address = "127.0.0.1";
    options.port = static_cast<std::uint16_t>(server.Port());
    options.scheme = "http";
    options.dataFolder = folder.Path();
    options.outbox = folder / "outbox";
    options.extensions = {".jsonkob", ".jsonrud"};
    options.limits.request = 300ms;
    options.limits.answerBytes = 10'000;
    options.clock = clock;
    boost::filesystem::create_directory(options.outbox);
    Restart();
  }
  void Restart() {
    options.identity = std::make_shared<IdentityStore>(folder / "identity.json");
    queue = std::make_shared<StatusQueue>(folder / "statuses.jsonl");
    const auto session = std::make_shared<ServerSession>(options, stopped);
    delivery = std::make_unique<Delivery>(options, session, queue, stopped);
  }
  void Put(const std::string& name, const std::string& content) {
    WriteFile(options.outbox / name, SEAL + content);
    delivery->TakeNewFiles();
  }
  /// Delivers, and then lets the time pass that it wants to wait; answers that.
  double Round() {
    const auto next = delivery->Round();
    if (next == NEVER) return -1;
    const std::chrono::duration<double> wait = next - clock->Steady();
    clock->Move(std::chrono::ceil<std::chrono::seconds>(wait));
    return wait.count();
  }
  std::set<std::string> Waiting() const { return FilesBelow(options.outbox); }

  TemporaryFolder folder;
  std::shared_ptr<FakeActionClock> clock = std::make_shared<FakeActionClock>(1767225600);
  std::atomic<bool> stopped{false};
  ServerOptions options;
  std::shared_ptr<StatusQueue> queue;
  std::unique_ptr<Delivery> delivery;
};

TEST(Delivery, BringsAllThatWaitsInItsOrderAndThenDeletesIt) {
  ManagementServer server;
  Agent agent(server);
  for (const char* content : {"one", "two"}) agent.Put("Mac 1\n.jsonkob", content);
  agent.Put("m.jsonrud", "three");
  agent.Put("m.txt", "no document");
  agent.Put("empty.jsonrud", "");
  agent.queue->Add(StatusOf("a"));
  agent.Restart();
  agent.queue->Add(StatusOf("b"));
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_THAT(server.Requests(), ElementsAre("enrol", "statuses 7 7", "files Mac 1\n.jsonkob one",
                                             "files Mac 1\n.jsonkob two", "files m.jsonrud three",
                                             "files empty.jsonrud "));
  EXPECT_THAT(agent.Waiting(), ElementsAre("./m.txt"));
  agent.Restart();
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_THAT(server.Requests(), SizeIs(6));
}

TEST(Delivery, KeepsADocumentThatCouldNotBeSealedAndSendsTheOthers) {
  ManagementServer server;
  Agent agent(server);
  WriteFile(agent.options.outbox / "m.jsonkob", "{}");
  agent.delivery->TakeNewFiles();
  agent.Put("m.jsonrud", "one");
  const LogCapture log;
  EXPECT_GT(agent.Round(), 0);
  EXPECT_THAT(server.Requests(), ElementsAre("enrol", "files m.jsonrud one"));
  EXPECT_THAT(agent.Waiting(), ElementsAre(testing::EndsWith("~m.jsonkob")));
  EXPECT_THAT(log.Texts(3), ElementsAre(HasSubstr("it is not sealed")));
}

TEST(Delivery, LosesNothingToABadServerAndTellsOnOneLineWhatItDid) {
  for (const Json& row : Cases("bad servers")) {
    SCOPED_TRACE(row["name"]);
    ManagementServer server;
    Agent agent(server);
    agent.Put("m.jsonkob", "one");
    agent.queue->Add(StatusOf("a"));
    server.Set([&](State& state) { state.fault = row["fault"]; });
    const LogCapture log;
    EXPECT_GT(agent.Round(), 4.9);
    const std::string concerned = PartOf(row, "fault").value("resource", "");
    EXPECT_THAT(agent.Waiting(), SizeIs(concerned == "statuses" ? 0 : 1));
    EXPECT_EQ(agent.queue->IsEmpty(), concerned == "files");
    const auto lines = log.Texts(3);
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_THAT(lines[0], HasSubstr("The server " + agent.options.Origin() + " "));
    EXPECT_THAT(lines[0], HasSubstr(row["reason"].get<std::string>()));

    server.Set([](State& state) { state.fault = Json::object(); });
    EXPECT_EQ(agent.delivery->Round(), NEVER);
    EXPECT_THAT(agent.Waiting(), SizeIs(0));
    EXPECT_TRUE(agent.queue->IsEmpty());
  }
}

TEST(Delivery, WaitsLongerAfterEachFailureAndAsLongAsTheServerSays) {
  ManagementServer server;
  Agent agent(server);
  agent.Put("m.jsonkob", "one");
  for (const Json& row : Cases("waits")) {
    const std::string asked = row[0];
    server.Set([&](State& state) { state.fault = {{"status", 503}, {"retryAfter", asked}}; });
    EXPECT_THAT(agent.Round(), testing::AllOf(testing::Ge(row[1].get<double>()),
                                              testing::Le(row[2].get<double>())))
        << Shown(row);
  }
}

TEST(Delivery, HoldsUpOnlyWhatIsOfTheKindThatTheServerRefuses) {
  ManagementServer server;
  Agent agent(server);
  for (const char* content : {"one", "two"}) agent.Put("m.jsonkob", content);
  server.Set([](State& state) { state.fault = {{"status", 413}, {"resource", "files"}}; });
  const auto wait = agent.delivery->Round() - agent.clock->Steady();
  server.Set([](State& state) { state.fault = Json::object(); });
  agent.Put("m.jsonrud", "three");
  agent.clock->Move(4s);
  agent.delivery->Round();
  agent.clock->Move(std::chrono::ceil<std::chrono::seconds>(wait));
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_THAT(server.Requests(), ElementsAre("enrol", "files m.jsonrud three",
                                             "files m.jsonkob one", "files m.jsonkob two"));
}

TEST(Delivery, SendsAFileAgainThatAKillLeftBetweenUploadAndDeletion) {
  ManagementServer server({}, {}, false);
  Agent agent(server);
  agent.Put("m.jsonkob", "one");
  agent.options.limits.request = 30s;
  agent.Restart();
  const pid_t child = ::fork();
  if (child == 0) {
    agent.delivery->Round();
    ::_exit(0);
  }
  server.Set([&](State& state) { state.onKept = [=] { ::kill(child, SIGKILL); }; });
  server.Listen();
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFSIGNALED(status));
  EXPECT_THAT(agent.Waiting(), SizeIs(1));
  server.Set([](State& state) { state.onKept = {}; });
  agent.Restart();
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_THAT(server.Requests(),
              ElementsAre("enrol", "files m.jsonkob one", "files m.jsonkob one"));
  EXPECT_THAT(agent.Waiting(), SizeIs(0));
}

TEST(Delivery, IsTakenOnBeforeAnythingElseAndAgainBehindAServerThatForgot) {
  ManagementServer server;
  Agent agent(server);
  agent.Put("m.jsonkob", "one");
  for (const int status : {202, 403, 409}) {
    server.Set([=](State& state) { state.enrolmentStatus = status; });
    EXPECT_GT(agent.Round(), 4.9) << status;
  }
  server.Set([](State& state) { state.enrolmentStatus = 0; });
  for (const char* token : {"short", "with a blank in its middle"}) {
    server.Set([=](State& state) { state.token = token; });
    EXPECT_GT(agent.Round(), 4.9) << token;
  }
  server.Set([](State& state) { state.token = "a-token-of-the-server"; });
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_EQ(IdentityStore(agent.folder / "identity.json").Get().token, "a-token-of-the-server");
  server.Set([](State& state) { state.agents.clear(); });
  agent.Put("m.jsonkob", "two");
  EXPECT_GT(agent.Round(), 4.9);
  EXPECT_EQ(agent.delivery->Round(), NEVER);
  EXPECT_THAT(server.Requests(),
              ElementsAre("enrol", "enrol", "enrol", "enrol", "enrol", "enrol",
                          "files m.jsonkob one", "enrol", "files m.jsonkob two"));
}

TEST(ServerLink, DeliversFromStartToStopAndSleepsInBetween) {
  ManagementServer server;
  const Agent agent(server);
  ServerLink link(agent.options);
  WriteFile(agent.options.outbox / "m.jsonkob", SEAL + "one");
  link.NewFileOnOutbox();
  link.ReportTaskStatus(StatusOf("first"));
  link.ReportTaskStatus(StatusOf(""));
  EXPECT_THAT(server.Requests(), SizeIs(0));
  link.Start();
  ASSERT_TRUE(server.WaitForRequests(3));
  WriteFile(agent.options.outbox / "m.jsonkob", SEAL + "two");
  link.NewFileOnOutbox();
  ASSERT_TRUE(server.WaitForRequests(4));
  link.Stop();
  EXPECT_THAT(server.Requests(),
              ElementsAre("enrol", "statuses 7", "files m.jsonkob one", "files m.jsonkob two"));
}

TEST(ServerLink, AStopWaitsForNoServer) {
  ManagementServer server;
  std::promise<void> asked;
  server.Set([&](State& state) {
    state.onKept = [&] { asked.set_value(); };
    state.fault = {{"status", 200}, {"sends", "nothing"}, {"keeps", true}};
  });
  Agent agent(server);
  agent.options.limits.request = 10min;
  WriteFile(agent.options.outbox / "m.jsonkob", SEAL + "one");
  ServerLink link(agent.options);
  const LogCapture log;
  link.Start();
  asked.get_future().wait();
  link.Stop();
  PendingTasksResponse answer;
  EXPECT_FALSE(link.ProcessMessage(PendingTasksRequest(), answer));
  EXPECT_THAT(log.Texts(3), ElementsAre(HasSubstr("the agent stops")));
  EXPECT_THAT(agent.Waiting(), SizeIs(1));
}

TEST(ServerLink, AsksTheServerAndBringsTheStatesOfTasksBeforeItAsksForMore) {
  ManagementServer server;
  server.Set([](State& state) {
    state.answers = {{"messages", R"({"result": 3, "message": "{\"available\":true}"})"},
                     {"tasks", R"({"tasks": [{"identifier": "t", "code": 5}]})"}};
  });
  const Agent agent(server);
  const auto link = std::make_shared<ServerLink>(agent.options);
  ProcessMessageRequest request;
  ProcessMessageResponse response;
  ASSERT_TRUE(link->ProcessMessage(request, response));
  EXPECT_EQ(response.result, 3u);
  EXPECT_EQ(response.message, "{\"available\":true}");

  RemoteTaskDownloader downloader(link, PRODUCT_KOB, {}, "agent", nullptr);
  link->ReportTaskStatus(StatusOf("r"));
  server.Set([](State& state) { state.fault = {{"status", 500}, {"resource", "statuses"}}; });
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(0));
  server.Set([](State& state) { state.fault = Json::object(); });
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(1));
  server.Set([](State& state) { state.answers["tasks"] = R"({"tasks": 5})"; });
  const LogCapture log;
  EXPECT_THAT(downloader.GetSchedules(), SizeIs(0));
  EXPECT_THAT(log.Texts(3), ElementsAre("The server " + agent.options.Origin() +
                                        " gave no answer to a question: tasks is no list"));
  const std::string tasks = R"(tasks {"agentIdentifier":"agent","product":1})";
  EXPECT_THAT(server.Requests(),
              ElementsAre("enrol", R"(messages {"code":0,"message":"","subcode":0})", "statuses 7",
                          tasks, tasks));
}

TEST(ServerLink, TrustsNobodyButTheConfiguredAuthorityAndTheRightName) {
  const TemporaryFolder folder;
  for (const auto& [name, alternative] :
       std::map<std::string, std::string>{{"right", "IP:127.0.0.1"},
                                          {"foreign", "IP:127.0.0.1"},
                                          {"elsewhere", "DNS:else.where"}}) {
    const std::string file = (folder / name).string();
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj "
        "/CN=" +
        name + " -addext subjectAltName=" + alternative + " -keyout " + file + ".key -out " + file +
        ".pem >/dev/null 2>&1";
    ASSERT_EQ(std::system(command.c_str()), 0);
  }
  for (const Json& row : Cases("certificates")) {
    SCOPED_TRACE(row["name"]);
    const std::string file = (folder / row["server"].get<std::string>()).string();
    const std::string trusted = row["trusted"];
    ManagementServer server(file + ".pem", file + ".key");
    Agent agent(server);
    agent.options.scheme = "https";
    if (!trusted.empty()) agent.options.caFile = (folder / trusted).string() + ".pem";
    ServerLink link(agent.options);
    const LogCapture log;
    PendingTasksResponse answer;
    EXPECT_EQ(link.ProcessMessage(PendingTasksRequest(), answer), row["reached"].get<bool>());
    EXPECT_THAT(server.Requests(), SizeIs(row["reached"] ? 2 : 0));
    EXPECT_THAT(log.Texts(3), SizeIs(row["reached"] ? 0 : 1));
  }
}

TEST(StatusQueue, OutlivesAnyEndOfTheProcessAndIsBounded) {
  const TemporaryFolder folder;
  const auto file = folder / "statuses.jsonl";
  StatusQueue(file).Add(StatusOf("a"));
  WriteFile(file, ContentOf(file) + "{\"id\": \"cut");
  const LogCapture log;
  StatusQueue(file, 2).Add(StatusOf("\xFF\n" + std::string(5000, 'x')));
  EXPECT_THAT(log.Texts(3), SizeIs(1)) << "the line that was cut";
  StatusQueue queue(file, 2);
  queue.Add(StatusOf("c"));
  EXPECT_THAT(log.Texts(2), SizeIs(1)) << "the oldest is dropped";
  EXPECT_FALSE(queue.DropThrough("unknown"));
  EXPECT_TRUE(queue.DropThrough(queue.First(5).at(0).id));
  const auto left = StatusQueue(file, 2).First(5);
  ASSERT_THAT(left, SizeIs(1));
  EXPECT_THAT(left[0].json, HasSubstr(R"("requestId":"c")"));
}

}  // namespace
