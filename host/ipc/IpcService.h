#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/filesystem/path.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "common/ipc/ICommunicationIPC.h"
#include "common/log/LineLimit.h"
#include "host/ipc/IpcConnection.h"
#include "host/ipc/RateLimit.h"

namespace Norvik::Host {

/// The resources that all connections together may use.
struct ServiceLimits {
  /// One message of a connection waits to be handled; its next ones stay in the socket.
  ConnectionLimits connection{1 << 20, 4 << 20, 0, std::chrono::seconds(30),
                              std::chrono::seconds(10)};
  std::size_t userFrameBytes = 32 << 10;  ///< length of a frame of a user; no message needs more
  std::size_t connections = 256;
  /// Further connections for users who have none; administrators may have as many again.
  std::size_t reserve = 32;
  std::size_t connectionsOfUser = 32;
  std::size_t connectionsInMinute = 600;  ///< of one user
  std::size_t linesInMinute = 20;         ///< in the log that one user causes
  std::size_t detailsInMinute = 600;      ///< likewise, of the levels above 4
  std::size_t sessionStartsInMinute = 1;  ///< of one user that are reported to `onSession`
  std::size_t memoryOfUser = 6 << 20;     ///< bytes
  std::size_t memoryOfUsers = 40 << 20;   ///< of all users but administrators
  std::size_t memoryOfAdministrator = 64 << 20;
};

/// The usual limits for a process that may open this number of descriptors: it keeps more than half
/// of them for itself.
ServiceLimits LimitsFor(std::size_t descriptors);

/// The service's end of the agent's local socket. Users' processes that join become sessions,
/// numbered from 1; the kernel identifies their users. Only the allowed messages of a session are
/// passed on, one at a time, the users in turn. Administrators (root, and the user of the service)
/// may send requests instead. Anything else is dropped, with a line in the log that says what was
/// sent and by whom. All methods but `Start` and `Stop` are safe on any thread.
class IpcService : public Common::ICommunicationIPC {
 public:
  using SessionId = unsigned long long;

  /// Who sent a message.
  struct Sender {
    uid_t user;
    std::string text;  ///< "user 501, process 4711"
  };

  /// All are called on the socket's own thread and must not block. What they log counts for the
  /// user of the connection.
  struct Events {
    /// `handled` must be called after the message has been handled, on any thread, while the
    /// service exists: the next message of any user waits for it.
    std::function<void(Common::IPCMessage message, const Sender& sender,
                       std::function<void()> handled)>
        onMessage;
    std::function<void(SessionId)> onSession;
    /// Has to answer the request of an administrator on its connection, at once or later; both are
    /// JSON. The service must outlive the use of the connection. Must not throw.
    std::function<void(const std::string& request, const std::shared_ptr<IpcConnection>& from)>
        onRequest;
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
  /// Waits until no session has more than this number of bytes left to read, or the time is over.
  void WaitForReaders(std::size_t mostBytes, std::chrono::milliseconds limit);
  /// The number of messages that were handled.
  std::uint64_t HandledMessages() const { return handledMessages_; }

 private:
  using Acceptor = boost::asio::local::stream_protocol::acceptor;
  using ConnectionPointer = std::shared_ptr<IpcConnection>;
  /// More than one release of memory, since an action may go on after the last frame.
  static constexpr int RELEASES = 3;

  /// A message that waits for its turn. The connection counts its memory.
  struct WaitingMessage {
    ConnectionPointer connection;
    Common::IPCMessage message;
    std::size_t size;  ///< of the frame's content
  };
  /// The resources that one user has used.
  struct UserAccount {
    UserAccount(const ServiceLimits& limits, std::shared_ptr<MemoryLimit> memoryLimit);
    bool IsUnused() const;
    std::size_t connections = 0;
    RateLimit opened;
    RateLimit sessionStarts;
    RateLimit refusals;
    std::shared_ptr<Common::LineLimit> lines;
    std::shared_ptr<MemoryLimit> memory;
    std::deque<WaitingMessage> waiting;
  };

  void Accept();
  void RetryAccept();
  void Admit(IpcConnection::Socket socket);
  void StartConnection(const ConnectionPointer& connection);
  std::string ReasonToRefuse(uid_t user, UserAccount& account) const;
  ConnectionLimits LimitsOf(uid_t user) const;
  UserAccount& AccountOf(uid_t user);
  UserAccount& AccountOf(const IpcConnection& connection);
  void OnFrame(const ConnectionPointer& connection, SessionId& session, Frame frame);
  void Join(const ConnectionPointer& connection, SessionId& session);
  void OnMessage(const ConnectionPointer& connection, SessionId session, const Frame& frame);
  void OnRequest(const ConnectionPointer& connection, const Frame& frame);
  void OnClosed(const ConnectionPointer& connection, SessionId session, const std::string& problem);
  void HandleNext();
  void OnHandled(const std::weak_ptr<IpcConnection>& connection, std::size_t size);
  void TidyLater();
  void Tidy();
  void ReportLinesLeftOut(std::chrono::steady_clock::time_point until);

  const boost::filesystem::path path_;
  const ServiceLimits limits_;
  boost::asio::io_context context_{1};
  Acceptor acceptor_;
  boost::asio::steady_timer acceptTimer_;
  boost::asio::steady_timer tidyTimer_;
  Events events_;
  const std::shared_ptr<MemoryLimit> memoryOfUsers_;
  std::map<uid_t, UserAccount> accounts_;
  std::deque<uid_t> turns_;  ///< users with waiting messages, the next one first
  bool handling_ = false;    ///< a message is being handled
  int releases_ = RELEASES;  ///< how often free memory is still to be given back; also of the start
  bool willTidy_ = false;    ///< `tidyTimer_` runs
  std::set<ConnectionPointer> connections_;
  SessionId lastSession_ = 0;
  std::atomic<std::uint64_t> handledMessages_{0};

  std::mutex mutex_;  ///< guards `sessions_`, which any thread may read
  std::map<SessionId, ConnectionPointer> sessions_;
  std::thread thread_;
};

}  // namespace Norvik::Host
