#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <stdexcept>
#include <string>

namespace Norvik::Host {

/// The agent at a socket did not answer. The text names the socket and the reason.
class NoAnswer : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Sends a request to the agent that serves a socket, waits and returns its answer; both are JSON.
/// Throws `NoAnswer`.
std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit = std::chrono::seconds(10));

}  // namespace Norvik::Host
