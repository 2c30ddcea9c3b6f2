#pragma once

#include <sys/socket.h>
#include <sys/time.h>
#include <sys/un.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "platform/FileDescriptor.h"

namespace Norvik::Tests {

/// A client of a local socket that sends arbitrary bytes.
class LocalClient {
 public:
  explicit LocalClient(const std::string& path) : socket_(::socket(AF_UNIX, SOCK_STREAM, 0)) {
    std::signal(SIGPIPE, SIG_IGN);  // a closed connection is an expected result
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    connected_ =
        ::connect(socket_.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    const timeval limit{20, 0};
    ::setsockopt(socket_.Get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
  }

  bool IsConnected() const { return connected_; }
  /// False after the other side has closed the connection.
  bool Send(const std::string& bytes) const {
    return ::send(socket_.Get(), bytes.data(), bytes.size(), 0) ==
           static_cast<ssize_t>(bytes.size());
  }
  /// At least one byte; empty after the other side has closed the connection, or after 20 seconds.
  std::string Receive() const {
    char bytes[4096];
    const ssize_t length = ::recv(socket_.Get(), bytes, sizeof(bytes), 0);
    return length > 0 ? std::string(bytes, static_cast<std::size_t>(length)) : "";
  }
  void HangUp() { socket_.Close(); }

 private:
  Platform::FileDescriptor socket_;
  bool connected_ = false;
};

/// Waits until the condition holds. False if it does not within the limit.
template <class Condition>
bool Eventually(Condition condition, std::chrono::seconds limit = std::chrono::seconds(60)) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  return true;
}

}  // namespace Norvik::Tests
