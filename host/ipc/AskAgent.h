#pragma once

#include <boost/filesystem/path.hpp>
#include <chrono>
#include <stdexcept>
#include <string>

namespace Norvik::Host {

/// Nobody answered at the socket. The text names it and says why.
class NoAnswer : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Puts a request (JSON) to the running agent that serves the socket; its answer (JSON). Raises
/// `NoAnswer`.
std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit = std::chrono::seconds(10));

}  // namespace Norvik::Host
