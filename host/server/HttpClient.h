#pragma once

#include <atomic>
#include <boost/optional.hpp>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/server/ServerOptions.h"
#include "platform/FileDescriptor.h"

namespace Norvik::Host {

/// A request. Its body is a text or a file.
struct HttpRequest {
  std::string method;                ///< "POST" or "PUT"
  std::string path;                  ///< begins with a slash; percent-encoded
  std::vector<std::string> headers;  ///< "Name: value"
  std::string body;                  ///< not used if there is a file
  /// Not owned; sent from its current position, from which it must have `fileSize` bytes. Null: no
  /// file.
  const Platform::FileDescriptor* file = nullptr;
  std::uint64_t fileSize = 0;
  /// Whether the answer gets the `facts` of its connection.
  bool wantsFacts = false;
};

/// How far a request came, and what it learned of the server.
struct ConnectionFacts {
  enum Stage { NOTHING, NAME_RESOLVED, CONNECTED, TRUSTED, ANSWERED };

  Stage reached = NOTHING;  ///< `TRUSTED` also without TLS
  bool outOfTime = false;   ///< the request ended because of a limit of time
  /// When the first certificate of the chain expires; empty if the TLS library does not show it.
  boost::optional<std::chrono::system_clock::time_point> expires;
  boost::optional<std::chrono::system_clock::time_point> date;  ///< of the answer, by its header
};

struct HttpAnswer {
  long status = 0;  ///< 0: no complete answer arrived
  std::string body;
  boost::optional<std::chrono::seconds> retryAfter;  ///< the wait that the server requests
  std::string failure;                               ///< why no complete answer arrived
  ConnectionFacts facts;                             ///< only if the request wants them

  bool IsSuccess() const { return status >= 200 && status < 300; }
  /// One line without the body: "answered 500" or "gave no answer (...)".
  std::string Text() const;
};

/// Sends requests to one server within limits: its certificate is verified, redirects are not
/// followed, and the time and the size of its answer are limited. Keeps connections open between
/// requests. For one thread.
class HttpClient {
 public:
  /// @param stopped ends a running request within a second, and every later one at once; must
  ///        outlive the client
  HttpClient(const ServerOptions& options, const std::atomic<bool>& stopped);
  HttpClient(const HttpClient&) = delete;
  HttpClient& operator=(const HttpClient&) = delete;
  ~HttpClient();

  /// Waits for the answer. Throws only `std::bad_alloc`: a failure is part of the answer.
  HttpAnswer Send(const HttpRequest& request);

 private:
  struct Handle;

  const std::string origin_;
  const std::string scheme_;
  const std::string caFile_;
  const ServerLimits limits_;
  const std::atomic<bool>& stopped_;
  const std::unique_ptr<Handle> handle_;
};

}  // namespace Norvik::Host
