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

/// The requests of this agent to its server, under its identity, and its enrolment there. Safe on
/// any thread.
class ServerSession {
 public:
  /// @param stopped must outlive the session
  ServerSession(const ServerOptions& options, const std::atomic<bool>& stopped);

  /// A client of this server, for one thread.
  std::unique_ptr<HttpClient> NewClient() const;
  std::string Origin() const { return options_.Origin(); }

  /// Enrols the agent at the server, unless it is enrolled. False after a failure, which is logged.
  /// @param retryAfter receives the wait that the server requests
  bool Enrol(HttpClient& client, boost::optional<std::chrono::seconds>& retryAfter);

  /// Sends a request with the agent's identifier and token. If the server rejects them, the agent
  /// is no longer enrolled.
  /// @param resource the path below that of the agent: "messages"; empty for the agent itself
  HttpAnswer Send(HttpClient& client, const std::string& resource, HttpRequest request);
  /// Sends a JSON text by POST.
  HttpAnswer Post(HttpClient& client, const std::string& resource, const std::string& body);

 private:
  void FinishEnrolment(const HttpAnswer& answer, const Identity& identity);

  const ServerOptions options_;
  const std::atomic<bool>& stopped_;
  std::mutex enrolMutex_;
};

}  // namespace Norvik::Host
