#pragma once

#include <boost/asio/io_context.hpp>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Norvik::Forge {

struct HttpRequest {
  std::string method;
  std::string url;
  std::vector<std::string> headers;
  std::string body;
};

struct HttpAnswer {
  long status = 0;  ///< 0: there was no answer, or not all of it
  std::string error;
  std::string body;
  long retryAfter = -1;       ///< in seconds; -1: none
  double seconds = 0;         ///< from the request to the end of the answer
  double connectSeconds = 0;  ///< of these, until the connection was encrypted; 0: it was open
};

/// Whether an agent takes the answer as a failure of the server, waits and sends the same again.
/// Other statuses from 400 on refuse only what was sent.
inline bool IsServerFailure(const HttpAnswer& answer) {
  const long status = answer.status;
  return status < 200 || (status >= 300 && status < 400) || status >= 500 || status == 408 ||
         status == 425 || status == 429;
}

/// What all lines of a process share: libcurl itself, and the addresses of hosts.
class HttpLibrary {
 public:
  /// @param caFile  the authorities that may have issued the certificate; empty: the system's
  explicit HttpLibrary(std::string caFile);
  HttpLibrary(const HttpLibrary&) = delete;
  HttpLibrary& operator=(const HttpLibrary&) = delete;
  ~HttpLibrary();

  const std::string& CaFile() const { return caFile_; }
  void* Share() const { return share_; }

 private:
  std::string caFile_;
  void* share_;
};

/// The connection of one agent to the server: opened by the first request, kept, and closed with
/// this object. It must be used and destroyed on the thread that runs the context.
class HttpLine {
 public:
  HttpLine(boost::asio::io_context& context, const HttpLibrary& library);
  HttpLine(const HttpLine&) = delete;
  HttpLine& operator=(const HttpLine&) = delete;
  /// Drops a request that is under way; its `done` is not called.
  ~HttpLine();

  /// Sends one request at a time. `done` is called later, never from within this call.
  void Send(HttpRequest request, std::function<void(HttpAnswer)> done);

 private:
  class Transfers;
  std::shared_ptr<Transfers> transfers_;
};

}  // namespace Norvik::Forge
