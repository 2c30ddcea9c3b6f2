#include "host/server/ManagementServer.h"

#include <httplib.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace Norvik::Tests {

namespace {

using PlainJson = nlohmann::json;
using httplib::Request, httplib::Response;
constexpr char AGENTS[] = "/norvik/v1/agents/";

}  // namespace

struct ManagementServer::Inside {
  std::unique_ptr<httplib::Server> server;
  int port = 0;
  std::thread thread;
  mutable std::mutex mutex;
  mutable std::condition_variable changed;
  State state;

  void Handle(const Request& request, Response& response) {
    const std::string path = request.path.substr(sizeof AGENTS - 1);
    const std::string agent = path.substr(0, path.find('/'));
    const std::string resource = path.substr(std::min(path.size(), agent.size() + 1));
    const std::string given = request.get_header_value("Authorization");
    std::unique_lock<std::mutex> lock(mutex);
    if (resource.empty()) return Enrol(agent, given, response);
    const auto known = state.agents.find(agent);
    if (known == state.agents.end() || known->second != given) {
      response.status = 401;
      return;
    }
    const bool isConcerned = resource.find(state.fault.value("resource", "")) != std::string::npos;
    const PlainJson fault = isConcerned ? state.fault : PlainJson::object();
    if (!fault.contains("status") || fault.contains("keeps")) Keep(resource, request, response);
    if (fault.contains("status")) Misbehave(fault, lock, response);
  }

  void Enrol(const std::string& agent, const std::string& given, Response& response) {
    state.requests.emplace_back("enrol");
    if (state.enrolmentStatus != 0) {
      response.status = state.enrolmentStatus;
      return;
    }
    state.agents[agent] = state.token.empty() ? given : "Bearer " + state.token;
    PlainJson body = {{"identifier", agent}};
    if (!state.token.empty()) body["token"] = state.token;
    response.set_content(body.dump(), "application/json");
  }

  void Keep(const std::string& resource, const Request& request, Response& response) {
    PlainJson answer = PlainJson::parse(state.answers[resource], nullptr, false);
    std::string line = resource + " " + request.body;
    if (resource == "statuses") {
      line = resource;
      const PlainJson sent = PlainJson::parse(request.body);
      for (const PlainJson& status : sent.at("statuses")) {
        line += " " + std::to_string(status.at("status").get<int>());
        answer = {{"acknowledged", status.at("id")}};
      }
    } else if (resource.rfind("files/", 0) == 0) {
      line = "files " + request.get_header_value("Norvik-File-Name") + " " + request.body.substr(9);
      answer = {{"sha256", resource.substr(6)}, {"size", request.body.size()}};
    }
    state.requests.push_back(line);
    response.set_content(answer.dump(), "application/json");
    changed.notify_all();
    if (state.onKept) state.onKept();
  }

  void Misbehave(const PlainJson& fault, std::unique_lock<std::mutex>& lock, Response& response) {
    response = Response();
    response.status = fault["status"];
    const std::string sends = fault.value("sends", "");
    if (fault.contains("retryAfter")) {
      response.set_header("Retry-After", fault["retryAfter"].get<std::string>());
    }
    if (sends == "nothing") changed.wait(lock, [&] { return state.closing; });
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
};

ManagementServer::ManagementServer(const boost::filesystem::path& certificate,
                                   const boost::filesystem::path& key)
    : inside_(std::make_unique<Inside>()) {
  auto& server = inside_->server;
  if (certificate.empty()) {
    server = std::make_unique<httplib::Server>();
  } else {
    server = std::make_unique<httplib::SSLServer>(certificate.c_str(), key.c_str());
  }
  const auto handler = [this](const Request& request, Response& response) {
    inside_->Handle(request, response);
  };
  server->Put(std::string(AGENTS) + ".*", handler);
  server->Post(std::string(AGENTS) + ".*", handler);
  inside_->port = server->bind_to_any_port("127.0.0.1");
  inside_->thread = std::thread([this] { inside_->server->listen_after_bind(); });
  while (!inside_->server->is_running()) std::this_thread::yield();
}

ManagementServer::~ManagementServer() {
  Set([](State& state) { state.closing = true; });
  inside_->server->stop();
  inside_->thread.join();
}

int ManagementServer::Port() const { return inside_->port; }

void ManagementServer::Set(const std::function<void(State&)>& change) {
  const std::lock_guard<std::mutex> lock(inside_->mutex);
  change(inside_->state);
  inside_->changed.notify_all();
}

std::vector<std::string> ManagementServer::Requests() const {
  const std::lock_guard<std::mutex> lock(inside_->mutex);
  return inside_->state.requests;
}

bool ManagementServer::WaitForRequests(std::size_t count) const {
  std::unique_lock<std::mutex> lock(inside_->mutex);
  return inside_->changed.wait_for(lock, std::chrono::seconds(30),
                                   [&] { return inside_->state.requests.size() >= count; });
}

}  // namespace Norvik::Tests
