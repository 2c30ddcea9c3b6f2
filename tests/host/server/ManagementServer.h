#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Norvik::Tests {

/// A management server in this process, over HTTP or HTTPS. It follows docs/server-protocol.md
/// unless its state has a fault. Safe on any thread.
class ManagementServer {
 public:
  struct State {
    /// How it answers every request but an enrolment; empty: as it should. Keys: "status", "body",
    /// "sends" ("cut", "endless" or "nothing"), "retryAfter", "resource" (a part of the paths
    /// concerned), "keeps" (it stores what it received nevertheless).
    nlohmann::json fault = nlohmann::json::object();
    std::map<std::string, std::string> answers = {{"tasks", R"({"tasks":[]})"}};
    std::string token;        ///< given to agents that enrol; empty: they keep their own
    int enrolmentStatus = 0;  ///< the answer to an enrolment; 0: it enrols the agent
    std::map<std::string, std::string> agents;  ///< the authorization of each enrolled agent
    std::function<void()> onKept;               ///< called after each request that was stored
    /// A line for each request: "enrol", "statuses 7 8", "files MAC.jsonkob one", "tasks {...}".
    std::vector<std::string> requests;
    bool closing = false;
  };

  /// Serves plain HTTP without a certificate. Both files are PEM.
  explicit ManagementServer(const boost::filesystem::path& certificate = {},
                            const boost::filesystem::path& key = {});
  ~ManagementServer();

  int Port() const;
  void Set(const std::function<void(State&)>& change);
  std::vector<std::string> Requests() const;
  /// False if they do not arrive within half a minute.
  bool WaitForRequests(std::size_t count) const;

 private:
  struct Inside;
  const std::unique_ptr<Inside> inside_;
};

}  // namespace Norvik::Tests
