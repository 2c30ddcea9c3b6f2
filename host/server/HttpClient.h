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
  std::string method;  ///< "POST" or "PUT"
  std::string path;    ///< from the first slash on, ready to be sent
  std::vector<std::string> headers;
  std::string body;
  /// Sent from its present position on; it must have `fileSize` bytes from there. Null: no file.
  const Platform::FileDescriptor* file = nullptr;
  std::uint64_t fileSize = 0;
};

/// What came back.
struct HttpAnswer {
  long status = 0;  ///< 0: there was no whole answer
  std::string body;
  boost::optional<std::chrono::seconds> retryAfter;
  std::string failure;  ///< why there was no whole answer

  bool IsSuccess() const { return status >= 200 && status < 300; }
  /// On one line, without the body: "answered 500", or the failure.
  std::string Text() const;
};

/// Sends requests to one server and bounds what it may do: its certificate is checked, it is never
/// followed elsewhere, its time and the size of its answer are limited. Keeps connections open from
/// one request to the next. Not for two threads at once.
class HttpClient {
 public:
  /// @param stopped ends a request that runs within a second, and every later one at once; must
  ///        outlive the client
  HttpClient(const ServerOptions& options, const std::atomic<bool>& stopped);
  HttpClient(const HttpClient&) = delete;
  HttpClient& operator=(const HttpClient&) = delete;
  ~HttpClient();

  /// Never raises but `std::bad_alloc`.
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
