#pragma once

#include <boost/optional.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/ReplacementFile.h"

namespace Norvik::Receiver {

/// A request as a handler gets it.
struct Request {
  std::string method;
  std::string target;
  std::string authorization;              ///< headers; empty if missing
  std::string fileName;                   ///< of the header Norvik-File-Name
  std::string address;                    ///< of the client
  boost::optional<std::uint64_t> length;  ///< of the body, as announced

  std::string body;
  /// In place of `body` if the handler wants the body in a file: the file, which is not committed
  /// and not yet on the disk, and the SHA-256 of its content in hexadecimal digits.
  std::unique_ptr<Platform::ReplacementFile> file;
  std::uint64_t fileSize = 0;
  std::string sha256;
};

struct Response {
  int status = 200;
  std::string body;    ///< JSON
  int retryAfter = 0;  ///< seconds; 0: no such header
};

/// What the server does with the body of a request once its head has arrived.
struct BodyPlan {
  std::uint64_t limit = 0;  ///< in bytes
  std::string file;         ///< target of `Request::file`; empty: into `Request::body`
  /// Called with the whole request.
  std::function<Response(Request&)> handle;
};

/// Either `plan.handle` is set or the answer is ready without the body.
struct Decision {
  BodyPlan plan;
  Response response;
};

/// Called with the head of each request, on one of several threads; may block and must not throw.
using Decide = std::function<Decision(const Request& head)>;

/// An answer with the body {"error": SENTENCE}.
Response ErrorResponse(int status, const std::string& sentence, int retryAfter = 0);

}  // namespace Norvik::Receiver
