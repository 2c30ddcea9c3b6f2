#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/filesystem/path.hpp>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "common/ipc/ICommunicationIPC.h"
#include "host/ipc/IpcConnection.h"
#include "host/ipc/RateLimit.h"

namespace Norvik::Host {

/// What all connections together may take up.
struct ServiceLimits {
  ConnectionLimits connection;
  std::size_t connections = 256;
  std::size_t connectionsOfUser = 32;
  std::size_t connectionsInMinute = 600;  ///< of one user
  std::size_t complaintsInMinute = 20;    ///< lines in the log about one user
  std::size_t sessionStartsInMinute = 1;  ///< of one user that are told to `onSession`
};

/// The service's end of the agent's local socket. Users' processes that join become sessions,
/// numbered from 1 on; the kernel says who they are. Of their messages only the allowed ones come
/// in. Administrators (root, and the user of the service) may send requests instead. Whatever else
/// comes is dropped, with a line in the log that says what and from whom.
class IpcService : public Common::ICommunicationIPC {
 public:
  using SessionId = unsigned long long;

  /// All are called on the socket's own thread and must not wait.
  struct Events {
    /// `handled` is to be called when the message was dealt with, on any thread, while the service
    /// lives: messages that wait hold back their sender.
    std::function<void(Common::IPCMessage message, std::function<void()> handled)> onMessage;
    std::function<void(SessionId)> onSession;
    /// Answers a request of an administrator; both are JSON. `from` tells who asks, for logs. Must
    /// not raise.
    std::function<std::string(const std::string& request, const std::string& from)> onRequest;
  };

  /// Binds the socket; nobody is let in yet. Raises `std::runtime_error` if another agent serves
  /// it, or it cannot be made.
  explicit IpcService(const boost::filesystem::path& socket, const ServiceLimits& limits = {});
  IpcService(const IpcService&) = delete;
  IpcService& operator=(const IpcService&) = delete;
  ~IpcService() override;

  void Start(Events events);
  /// Ends all connections and removes the socket; no callback runs behind it. Not from a callback.
  void Stop();

  bool Send(const Common::IPCMessage& message, SessionId session) override;
  std::map<SessionId, Common::IPCSessionData> GetSessions() override;

 private:
  using Acceptor = boost::asio::local::stream_protocol::acceptor;
  using ConnectionPointer = std::shared_ptr<IpcConnection>;
  /// What one user has taken up.
  struct UserAccount {
    explicit UserAccount(const ServiceLimits& limits);
    std::size_t connections = 0;
    RateLimit opened;
    RateLimit complaints;
    RateLimit sessionStarts;
    RateLimit refusals;
  };

  void Accept();
  void RetryAccept();
  void Admit(IpcConnection::Socket socket);
  std::string ReasonToRefuse(UserAccount& account, RateLimit::Verdict opened) const;
  UserAccount& AccountOf(const IpcConnection& connection);
  void Complain(const IpcConnection& connection, const std::string& text);
  void Take(const ConnectionPointer& connection, SessionId& session, Frame frame);
  void Join(const ConnectionPointer& connection, SessionId& session);
  void TakeMessage(const ConnectionPointer& connection, SessionId session, const Frame& frame);
  void TakeRequest(const ConnectionPointer& connection, const Frame& frame);
  void Forget(const ConnectionPointer& connection, SessionId session, const std::string& problem);

  const boost::filesystem::path path_;
  const ServiceLimits limits_;
  boost::asio::io_context context_{1};
  Acceptor acceptor_;
  boost::asio::steady_timer acceptTimer_;
  Events events_;
  std::map<uid_t, UserAccount> accounts_;
  std::set<ConnectionPointer> connections_;
  SessionId lastSession_ = 0;

  std::mutex mutex_;  ///< guards `sessions_`, which any thread may read
  std::map<SessionId, ConnectionPointer> sessions_;
  std::thread thread_;
};

}  // namespace Norvik::Host
