#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/filesystem/path.hpp>
#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <random>
#include <thread>

#include "common/ipc/ICommunicationIPC.h"
#include "host/ipc/IpcConnection.h"

namespace Norvik::Host {

/// How long a user's process waits between its attempts to connect; each wait doubles the last.
struct ReconnectWaits {
  std::chrono::milliseconds first{1000};
  std::chrono::milliseconds longest{5'000};
};

/// The usual limits of a user's process. It reads on while its output is slow, since the service
/// would cut it off, and notices at once that the service ends.
ConnectionLimits LimitsOfUsersProcess();

/// A user's end of the agent's local socket. Connects to the service, and reconnects whenever the
/// connection is lost. Accepts only allowed messages, and only from a service that runs as root or
/// as this user. All methods but `Start` and `Stop` are safe on any thread.
class IpcUser : public Common::ICommunicationIPC {
 public:
  /// The session number that stands for the service.
  static constexpr unsigned long long SERVICE = 0;

  /// Called on the connection's own thread and must not block; `handled` as in `IpcService`.
  using OnMessage = std::function<void(Common::IPCMessage message, std::function<void()> handled)>;

  /// Throws `std::runtime_error` for a path that is too long for a socket.
  explicit IpcUser(const boost::filesystem::path& socket, const ReconnectWaits& waits = {},
                   const ConnectionLimits& limits = LimitsOfUsersProcess());
  IpcUser(const IpcUser&) = delete;
  IpcUser& operator=(const IpcUser&) = delete;
  ~IpcUser() override;

  /// Connects, on a thread of its own. Once.
  void Start(OnMessage onMessage);
  /// Closes the connection. No callback runs after it. Must not be called from a callback.
  void Stop();

  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  /// A user's process has no sessions.
  std::map<unsigned long long, Common::IPCSessionData> GetSessions() override { return {}; }

 private:
  using Socket = IpcConnection::Socket;

  void Connect();
  void OnConnected(const std::shared_ptr<Socket>& socket);
  void OnFrame(Frame frame);
  void OnClosed(const std::string& problem);
  void RetryLater(const std::string& reason);
  std::shared_ptr<IpcConnection> Connection();

  const boost::filesystem::path path_;
  const boost::asio::local::stream_protocol::endpoint endpoint_;
  const ReconnectWaits waits_;
  const ConnectionLimits limits_;
  boost::asio::io_context context_{1};
  /// While reading is paused nothing else keeps the context running.
  const boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_;
  boost::asio::steady_timer timer_;
  OnMessage onMessage_;
  std::minstd_rand random_{std::random_device{}()};
  std::chrono::milliseconds wait_;
  std::chrono::steady_clock::time_point connectedAt_;
  bool reported_ = false;  ///< the log says that the service does not answer

  std::mutex mutex_;
  std::shared_ptr<IpcConnection> connection_;
  std::thread thread_;
};

}  // namespace Norvik::Host
