#pragma once

#include <boost/filesystem/path.hpp>
#include <functional>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace Norvik::Tests {

/// A management server in this process, over HTTP or HTTPS, as docs/server-protocol.md wants it,
/// until it is told to misbehave. Safe on any thread.
class ManagementServer {
 public:
  struct State {
    /// What it answers to all but an enrolment; null: what it should. "status", "body", "sends"
    /// ("cut", "endless" or "nothing"), "retryAfter", "resource" (part of the path concerned),
    /// "keeps" (it keeps what came nevertheless).
    nlohmann::json fault = nlohmann::json::object();
    std::map<std::string, std::string> answers = {{"tasks", R"({"tasks":[]})"}};
    std::string token;                          ///< that it hands out; empty: it takes the agent's
    int enrolmentStatus = 0;                    ///< 0: it takes on
    std::map<std::string, std::string> agents;  ///< what each is known by
    std::function<void()> onKept;               ///< behind each request that was kept
    /// One for each request: "enrol", "statuses 7 8", "files MAC.jsonkob one", "tasks {...}".
    std::vector<std::string> requests;
    bool closing = false;
  };

  /// Without a certificate it speaks plain HTTP. Both files are PEM.
  explicit ManagementServer(const boost::filesystem::path& certificate = {},
                            const boost::filesystem::path& key = {});
  ~ManagementServer();

  int Port() const;
  void Set(const std::function<void(State&)>& change);
  std::vector<std::string> Requests() const;
  /// False if they do not come within half a minute.
  bool WaitForRequests(std::size_t count) const;

 private:
  struct Inside;
  const std::unique_ptr<Inside> inside_;
};

}  // namespace Norvik::Tests
