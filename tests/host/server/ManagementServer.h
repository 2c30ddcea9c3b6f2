#pragma once

#include <httplib.h>

#include <condition_variable>

#include "support/Test.h"

namespace Norvik::Tests {

/// A management server in this process, over HTTP or HTTPS. It follows docs/server-protocol.md
/// unless its state has a fault. Safe on any thread.
class ManagementServer {
 public:
  struct State {
    /// How it answers every request but an enrolment; empty: as it should. Keys: "status", "body",
    /// "sends" ("cut", "endless" or "nothing"), "retryAfter", "headerBytes", "resource" (a part of
    /// the paths concerned), "keeps" (it stores what it received nevertheless).
    PlainJson fault = PlainJson::object();
    std::map<std::string, std::string> answers = {{"tasks", R"({"tasks":[]})"}};
    std::string token;          ///< given to agents that enrol; empty: they keep their own
    std::string date;           ///< the header of each answer; empty: none
    int enrolmentStatus = 0;    ///< the answer to an enrolment; 0: it enrols the agent
    std::string enrolmentBody;  ///< in place of its own
    std::map<std::string, std::string> agents;  ///< the authorization of each enrolled agent
    std::function<void()> onKept;               ///< called after each request that was stored
    /// A line for each request: "enrol", "statuses 7 8", "files MAC.jsonkob one", "answers 1011
    /// text" (the text of null is "-"), "tasks {...}".
    TextList requests;
    std::string enrolment;  ///< the body of the last one
    std::string answer;     ///< the last answer of a task, as it was sent
    bool closing = false;
  };

  /// Serves plain HTTP without a certificate. Both files are PEM.
  explicit ManagementServer(const fs::path& certificate = {}, const fs::path& key = {}) {
    if (certificate.empty()) {
      server_ = std::make_unique<httplib::Server>();
    } else {
      server_ = std::make_unique<httplib::SSLServer>(certificate.c_str(), key.c_str());
    }
    const auto handler = [this](const Request& request, Response& response) {
      Handle(request, response);
    };
    server_->Put(std::string(AGENTS) + ".*", handler);
    server_->Post(std::string(AGENTS) + ".*", handler);
    port_ = server_->bind_to_any_port("127.0.0.1");
    thread_ = std::thread([this] { server_->listen_after_bind(); });
    while (!server_->is_running()) std::this_thread::yield();
  }
  ~ManagementServer() {
    Set([](State& state) { state.closing = true; });
    server_->stop();
    thread_.join();
  }

  int Port() const { return port_; }
  void Set(const std::function<void(State&)>& change) {
    const std::lock_guard<std::mutex> lock(mutex_);
    change(state_);
    changed_.notify_all();
  }
  TextList Requests() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return state_.requests;
  }
  /// False if they do not arrive within half a minute.
  bool WaitForRequests(std::size_t count) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, seconds(30), [&] { return state_.requests.size() >= count; });
  }

 private:
  using Request = httplib::Request;
  using Response = httplib::Response;
  static constexpr char AGENTS[] = "/norvik/v1/agents/";

  void Handle(const Request& request, Response& response) {
    const std::string path = request.path.substr(sizeof AGENTS - 1);
    const std::string agent = path.substr(0, path.find('/'));
    const std::string resource = path.substr(std::min(path.size(), agent.size() + 1));
    const std::string given = request.get_header_value("Authorization");
    std::unique_lock<std::mutex> lock(mutex_);
    if (!state_.date.empty()) response.set_header("Date", state_.date);
    if (resource.empty()) {
      state_.enrolment = request.body;
      return Enrol(agent, given, response);
    }
    const auto known = state_.agents.find(agent);
    if (known == state_.agents.end() || known->second != given) {
      response.status = 401;
      return;
    }
    const bool isConcerned = resource.find(state_.fault.value("resource", "")) != std::string::npos;
    const PlainJson fault = isConcerned ? state_.fault : PlainJson::object();
    if (!fault.contains("status") || fault.contains("keeps")) Keep(resource, request, response);
    if (fault.contains("status")) Misbehave(fault, lock, response);
  }

  void Enrol(const std::string& agent, const std::string& given, Response& response) {
    state_.requests.emplace_back("enrol");
    if (state_.enrolmentStatus != 0) {
      response.status = state_.enrolmentStatus;
      return;
    }
    state_.agents[agent] = state_.token.empty() ? given : "Bearer " + state_.token;
    PlainJson body = {{"identifier", agent}};
    if (!state_.token.empty()) body["token"] = state_.token;
    const std::string& other = state_.enrolmentBody;
    response.set_content(other.empty() ? body.dump() : other, "application/json");
  }

  void Keep(const std::string& resource, const Request& request, Response& response) {
    PlainJson answer = PlainJson::parse(state_.answers[resource], nullptr, false);
    std::string line = resource + " " + request.body;
    if (resource == "statuses") {
      line = resource;
      const PlainJson sent = PlainJson::parse(request.body);
      for (const PlainJson& status : sent.at("statuses")) {
        line += " " + std::to_string(status.at("status").get<int>());
        answer = {{"acknowledged", status.at("id")}};
      }
    } else if (resource == "answers") {
      const PlainJson sent = PlainJson::parse(request.body);
      const PlainJson& text = sent.at("text");
      line = resource + " " + sent.at("code").dump() + " " +
             (text.is_null() ? "-" : text.get<std::string>());
      answer = {{"acknowledged", sent.at("id")}};
      state_.answer = request.body;
    } else if (resource.rfind("files/", 0) == 0) {
      line = "files " + request.get_header_value("Norvik-File-Name") + " " + request.body.substr(9);
      answer = {{"sha256", resource.substr(6)}, {"size", request.body.size()}};
    }
    state_.requests.push_back(line);
    response.set_content(answer.dump(), "application/json");
    changed_.notify_all();
    if (state_.onKept) state_.onKept();
  }

  void Misbehave(const PlainJson& fault, std::unique_lock<std::mutex>& lock, Response& response) {
    response = Response();
    response.status = fault["status"];
    const std::string sends = fault.value("sends", "");
    if (const std::size_t length = fault.value("headerBytes", std::size_t(0)); length != 0) {
      response.set_header("X-Long", std::string(length, 'x'));
    }
    if (fault.contains("retryAfter")) {
      response.set_header("Retry-After", fault["retryAfter"].get<std::string>());
    }
    if (sends == "nothing") changed_.wait(lock, [&] { return state_.closing; });
    if (sends == "endless" || sends == "cut") {
      const bool isCut = sends == "cut";
      const auto give = [isCut](std::size_t, std::size_t, httplib::DataSink& sink) {
        return sink.write("{\"sha\": ", 8) && !isCut;
      };
      response.set_content_provider(isCut ? 1000 : std::size_t(1) << 40, "application/json", give);
    } else {
      response.set_content(fault.value("body", "{}"), "application/json");
    }
  }

  std::unique_ptr<httplib::Server> server_;
  int port_ = 0;
  std::thread thread_;
  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  State state_;
};

}  // namespace Norvik::Tests
