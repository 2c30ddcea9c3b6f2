#pragma once

#include "common/files/FileSealer.h"
#include "common/files/SealingKeys.h"
#include "host/server/Delivery.h"
#include "host/server/ManagementServer.h"
#include "support/FakeActionClock.h"

namespace Norvik::Tests {

using namespace Common;
using namespace Host;
using namespace std::chrono_literals;
using State = ManagementServer::State;

constexpr long START = 1'767'225'600;

inline TaskResponseInfo StatusOf(const std::string& requestId) {
  TaskResponseInfo status;
  status.requestId = requestId;
  return status;
}

inline TaskAnswer AnswerOf(const std::string& text) {
  TaskAnswer answer{"t1", "r1", 1011, {}};
  answer.result.response.text = text;
  return answer;
}

inline const std::string SEAL = "NRVKSEAL\x01";

/// A server, and the agent's side of the connection to it, with an outbox of two kinds of files.
struct DeliverySetup {
  explicit DeliverySetup(const fs::path& certificate = {}, const fs::path& key = {})
      : server(certificate, key) {
    options.address = "127.0.0.1";
    options.port = static_cast<std::uint16_t>(server.Port());
    options.scheme = certificate.empty() ? "http" : "https";
    options.dataFolder = folder.Path();
    options.outbox = folder / "outbox";
    options.extensions = {".jsonkob", ".jsonrud"};
    options.limits.request = 300ms;
    options.limits.answerBytes = 10'000;
    options.clock = clock;
    fs::create_directory(options.outbox);
    PutServerKey();
    Restart();
  }
  void Restart() {
    options.identity = std::make_shared<AgentIdentity>(folder / "identity.json");
    queue = std::make_shared<StatusQueue>(folder / "statuses.jsonl", clock);
    answers = std::make_shared<AnswerQueue>(folder / "answers", clock);
    const auto session = std::make_shared<ServerSession>(options, stopped);
    delivery = std::make_unique<Delivery>(options, session, queue, answers, stopped);
  }
  void Put(const std::string& name, const std::string& content) {
    WriteFile(options.outbox / name, content);
    delivery->NumberNewFiles();
  }
  void PutSealed(const std::string& name, const std::string& content) { Put(name, SEAL + content); }
  void Report(const std::string& requestId) { queue->Add({StatusOf(requestId)}); }
  void Answer(const std::string& text) { answers->Add(AnswerOf(text)); }
  /// The file of the oldest waiting answer.
  fs::path AnswerFile() const { return answers->First().value().file; }
  void PutServerKey() {
    fs::create_directories(keys);
    SealingKeys(folder / "server").ForSealing();
    fs::copy_file(folder / "server" / "agent.pub", keys / "server.pub");
  }
  /// Puts a document that no server can read.
  void PutSealedToOwnKey(const std::string& name, const std::string& content) {
    WriteFile(folder / "plain", content + std::string(70'000, 'x'));
    FileSealer(keys).Seal(folder / "plain", options.outbox / name);
    delivery->NumberNewFiles();
  }
  /// The beginning of the last document, opened with the server's private key.
  std::string LastOpened() const {
    const std::string line = server.Requests().back();
    WriteFile(folder / "sealed",
              "NRVKSEAL\x02" + line.substr(line.find(' ', line.find(' ') + 1) + 1));
    FileSealer(folder / "server").Open(folder / "sealed", folder / "opened");
    return ContentOf(folder / "opened").substr(0, 3);
  }
  /// Seconds from now to the next round; -1 if it needs none.
  double Round() {
    const auto next = delivery->Round();
    if (next == Delivery::TimePoint::max()) return -1;
    return std::chrono::duration<double>(next - clock->Steady()).count();
  }
  std::multiset<std::string> Waiting() const {
    std::multiset<std::string> names;
    for (const auto& name : FilesBelow(options.outbox)) {
      names.insert(name.substr(name.find_last_of("/~") + 1));
    }
    return names;
  }
  /// Makes the server fail as the row says, and in no other way.
  void Break(const Json& row = Json::object()) {
    server.Set([&](State& state) {
      state.fault = PartOf(row, "fault");
      state.enrolmentStatus = row.value("enrolmentStatus", 0);
      state.token = row.value("token", "");
      if (row.contains("forgets")) state.agents.clear();
    });
  }

  ManagementServer server;
  TemporaryFolder folder;
  const fs::path keys = folder / "keys";
  std::shared_ptr<FakeActionClock> clock = std::make_shared<FakeActionClock>(START);
  std::atomic<bool> stopped{false};
  ServerOptions options;
  std::shared_ptr<StatusQueue> queue;
  std::shared_ptr<AnswerQueue> answers;
  std::unique_ptr<Delivery> delivery;
};

}  // namespace Norvik::Tests
