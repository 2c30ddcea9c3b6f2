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

/// The resources that all connections together may use.
struct ServiceLimits {
  ConnectionLimits connection;
  std::size_t connections = 256;
  std::size_t connectionsOfUser = 32;
  std::size_t connectionsInMinute = 600;  ///< of one user
  std::size_t complaintsInMinute = 20;    ///< lines in the log about one user
  std::size_t sessionStartsInMinute = 1;  ///< of one user that are reported to `onSession`
};

/// The service's end of the agent's local socket. Users' processes that join become sessions,
/// numbered from 1; the kernel identifies their users. Only the allowed messages of a session are
/// passed on. Administrators (root, and the user of the service) may send requests instead.
/// Anything else is dropped, with a line in the log that says what was sent and by whom. All
/// methods but `Start` and `Stop` are safe on any thread.
class IpcService : public Common::ICommunicationIPC {
 public:
  using SessionId = unsigned long long;

  /// All are called on the socket's own thread and must not block.
  struct Events {
    /// `handled` must be called after the message has been handled, on any thread, while the
    /// service exists: too many unhandled messages make their sender wait.
    std::function<void(Common::IPCMessage message, std::function<void()> handled)> onMessage;
    std::function<void(SessionId)> onSession;
    /// Returns the answer to a request of an administrator; both are JSON. `from` names the sender,
    /// for logs. Must not throw.
    std::function<std::string(const std::string& request, const std::string& from)> onRequest;
  };

  /// Binds the socket, but accepts no connection yet. Throws `std::runtime_error` if another agent
  /// serves it or it cannot be created.
  explicit IpcService(const boost::filesystem::path& socket, const ServiceLimits& limits = {});
  IpcService(const IpcService&) = delete;
  IpcService& operator=(const IpcService&) = delete;
  ~IpcService() override;

  /// Accepts connections, on a thread of its own. Once.
  void Start(Events events);
  /// Closes all connections and removes the socket. No callback runs after it. Must not be called
  /// from a callback.
  void Stop();

  bool Send(const Common::IPCMessage& message, SessionId session) override;
  std::map<SessionId, Common::IPCSessionData> GetSessions() override;

 private:
  using Acceptor = boost::asio::local::stream_protocol::acceptor;
  using ConnectionPointer = std::shared_ptr<IpcConnection>;
  /// The resources that one user has used.
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
  void OnFrame(const ConnectionPointer& connection, SessionId& session, Frame frame);
  void Join(const ConnectionPointer& connection, SessionId& session);
  void OnMessage(const ConnectionPointer& connection, SessionId session, const Frame& frame);
  void OnRequest(const ConnectionPointer& connection, const Frame& frame);
  void OnClosed(const ConnectionPointer& connection, SessionId session, const std::string& problem);

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
