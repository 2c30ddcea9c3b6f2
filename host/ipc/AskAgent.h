#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

namespace Norvik::Host {

/// The agent at a socket did not answer. The text names the socket and the reason.
class NoAnswer : public std::runtime_error {
 public:
  NoAnswer(const boost::filesystem::path& socket, const std::string& reason, bool runs)
      : std::runtime_error("no agent answers at " + socket.string() + ": " + reason),
        reason_(reason),
        runs_(runs) {}
  const std::string& Reason() const { return reason_; }
  /// Whether a process serves the socket all the same.
  bool Runs() const { return runs_; }

 private:
  std::string reason_;
  bool runs_;
};

/// Sends a request to the agent that serves a socket, waits and returns its answer; both are JSON.
/// Throws `NoAnswer`.
/// @param limit until the answer; or until the first events, after which it may take any time
/// @param onEvents gets JSON arrays as they come; what it throws ends the wait
std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit = std::chrono::seconds(10),
                     const std::function<void(const std::string& events)>& onEvents = {});

}  // namespace Norvik::Host
