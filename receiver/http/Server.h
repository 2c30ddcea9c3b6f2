#pragma once

#include <memory>
#include <string>

#include "receiver/http/Message.h"

namespace Norvik::Receiver {

struct ServerOptions {
  std::string address = "0.0.0.0";
  unsigned short port = 8443;  ///< 0: any
  std::string certificate;     ///< PEM file; empty: plain HTTP
  std::string certificateKey;
  unsigned int handlers = 8;  ///< threads that handle requests, and may block
  unsigned int connections = 10000;
};

/// An HTTP/1.1 server. Headers are limited to 16 KiB; a connection is closed if a head takes more
/// than 30 seconds, a pause in a body 30 seconds, a whole body its time at 4 KiB a second and a
/// minute, or if it is unused for 90 seconds.
class Server {
 public:
  /// Listens. Throws a subclass of `std::runtime_error` if it cannot, or if the certificate or its
  /// key cannot be used.
  Server(const ServerOptions& options, Decide decide);
  ~Server();

  unsigned short Port() const;
  /// Serves until SIGTERM or SIGINT.
  void Run();

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

}  // namespace Norvik::Receiver
