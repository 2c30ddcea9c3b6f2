#pragma once

#include <atomic>
#include <boost/optional.hpp>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>

#include "host/server/HttpClient.h"
#include "host/server/ServerOptions.h"

namespace Norvik::Host {

/// This agent at its server: who it is there, and whether the server has taken it on. Safe on any
/// thread.
class ServerSession {
 public:
  /// @param stopped must outlive the session
  ServerSession(const ServerOptions& options, const std::atomic<bool>& stopped);

  /// A client of this server, for one thread.
  std::unique_ptr<HttpClient> NewClient() const;
  std::string Origin() const { return options_.Origin(); }

  /// Has the server take on the agent, unless it did so already. A failure is logged.
  /// @param retryAfter the wait that a server asks for that did not
  bool Enrol(HttpClient& client, boost::optional<std::chrono::seconds>& retryAfter);

  /// Sends a request under the agent's identifier and token. A server that does not know them any
  /// more has to be asked to take on the agent again.
  /// @param resource the path behind that of the agent: "messages"
  HttpAnswer Send(HttpClient& client, const std::string& resource, HttpRequest request);
  /// The same with a JSON text.
  HttpAnswer Post(HttpClient& client, const std::string& resource, const std::string& body);

 private:
  void TakeOn(const HttpAnswer& answer, const Identity& identity);

  const ServerOptions options_;
  const std::atomic<bool>& stopped_;
  std::mutex enrolMutex_;
};

}  // namespace Norvik::Host
