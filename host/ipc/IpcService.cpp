#include "host/ipc/IpcService.h"

#include <sys/stat.h>
#include <unistd.h>

#include <boost/asio/post.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <stdexcept>
#include <utility>

#include "common/log/Logger.h"
#include "host/ipc/AllowedMessages.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Host {

using namespace Common;
using boost::system::error_code;
using std::chrono::minutes;

namespace {

constexpr std::chrono::seconds ACCEPT_RETRY(1);

bool IsAdministrator(const Platform::PeerCredentials& peer) {
  return peer.user == 0 || peer.user == ::geteuid();
}

}  // namespace

IpcService::UserAccount::UserAccount(const ServiceLimits& limits)
    : opened(limits.connectionsInMinute, minutes(1)),
      complaints(limits.complaintsInMinute, minutes(1)),
      sessionStarts(limits.sessionStartsInMinute, minutes(1)),
      refusals(0, minutes(1)) {}

IpcService::IpcService(const boost::filesystem::path& socket, const ServiceLimits& limits)
    : path_(socket), limits_(limits), acceptor_(context_), acceptTimer_(context_) {
  const auto endpoint = FreeEndpoint(path_);
  try {
    acceptor_.open(endpoint.protocol());
    acceptor_.bind(endpoint);
    // Everybody may connect; the user decides what is allowed.
    ::chmod(path_.c_str(), 0666);
    acceptor_.listen();
  } catch (const boost::system::system_error& error) {
    throw std::runtime_error("cannot serve the socket " + path_.string() + ": " +
                             error.code().message());
  }
}

IpcService::~IpcService() { Stop(); }

void IpcService::Start(Events events) {
  events_ = std::move(events);
  Accept();
  thread_ = std::thread([this] { context_.run(); });
}

void IpcService::Stop() {
  context_.stop();
  if (thread_.joinable()) thread_.join();
  if (!acceptor_.is_open()) return;
  error_code ignored;
  acceptor_.close(ignored);
  boost::filesystem::remove(path_, ignored);
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    sessions_.clear();
  }
  for (const auto& connection : connections_) connection->Abandon();
  connections_.clear();
}

bool IpcService::Send(const IPCMessage& message, SessionId session) {
  ConnectionPointer connection;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    const auto found = sessions_.find(session);
    if (found == sessions_.end()) return false;
    connection = found->second;
  }
  return connection->Send(EncodeFrame(FrameKind::MESSAGE, EncodeMessage(message)));
}

std::map<IpcService::SessionId, IPCSessionData> IpcService::GetSessions() {
  const std::lock_guard<std::mutex> lock(mutex_);
  std::map<SessionId, IPCSessionData> answer;
  for (const auto& [id, connection] : sessions_) {
    answer[id] = {std::to_string(connection->Peer().process)};
  }
  return answer;
}

void IpcService::Accept() {
  acceptor_.async_accept([this](const error_code& error, IpcConnection::Socket socket) {
    if (error == boost::asio::error::operation_aborted) return;
    if (error) {
      NORVIK_WARNING(boost::format("No process can connect: %1%") % error.message());
      return RetryAccept();
    }
    Admit(std::move(socket));
    Accept();
  });
}

/// Without a wait, the next attempt would fail at once, for example when no descriptor is free.
void IpcService::RetryAccept() {
  acceptTimer_.expires_after(ACCEPT_RETRY);
  acceptTimer_.async_wait([this](const error_code& error) {
    if (!error) Accept();
  });
}

void IpcService::Admit(IpcConnection::Socket socket) {
  const auto peer = Platform::CredentialsOfPeer(socket.native_handle());
  if (!peer) return;
  const auto connection =
      std::make_shared<IpcConnection>(std::move(socket), *peer, limits_.connection);
  UserAccount& account = AccountOf(*connection);
  const std::string reason = ReasonToRefuse(account, account.opened.Ask());
  if (!reason.empty()) {
    if (account.refusals.Ask() == RateLimit::Verdict::FIRST_REFUSED) {
      NORVIK_WARNING(boost::format("The connection of %1% is refused: %2%; more of them are not "
                                   "logged for a minute") %
                     connection->PeerText() % reason);
    }
    return;
  }
  ++account.connections;
  connections_.insert(connection);
  const auto session = std::make_shared<SessionId>(0);
  connection->Start({[this, raw = connection.get(), session](Frame frame) {
                       OnFrame(raw->shared_from_this(), *session, std::move(frame));
                     },
                     [this, raw = connection.get(), session](const std::string& problem) {
                       OnClosed(raw->shared_from_this(), *session, problem);
                     }});
}

std::string IpcService::ReasonToRefuse(UserAccount& account, RateLimit::Verdict opened) const {
  if (opened != RateLimit::Verdict::ALLOWED) {
    return "the user opened " + std::to_string(limits_.connectionsInMinute) + " in this minute";
  }
  if (account.connections >= limits_.connectionsOfUser) {
    return "the user has " + std::to_string(account.connections);
  }
  if (connections_.size() >= limits_.connections) {
    return "there are " + std::to_string(connections_.size());
  }
  return "";
}

IpcService::UserAccount& IpcService::AccountOf(const IpcConnection& connection) {
  return accounts_.try_emplace(connection.Peer().user, limits_).first->second;
}

void IpcService::Complain(const IpcConnection& connection, const std::string& text) {
  switch (AccountOf(connection).complaints.Ask()) {
    case RateLimit::Verdict::ALLOWED:
      NORVIK_WARNING(boost::format("The process of %1% %2%") % connection.PeerText() % text);
      return;
    case RateLimit::Verdict::FIRST_REFUSED:
      NORVIK_WARNING(boost::format("What else %1% does wrong is not logged for a minute") %
                     connection.PeerText());
      return;
    case RateLimit::Verdict::REFUSED:
      return;
  }
}

void IpcService::OnFrame(const ConnectionPointer& connection, SessionId& session, Frame frame) {
  const std::size_t size = frame.content.size();
  switch (frame.kind) {
    case FrameKind::MESSAGE:
      // Counts as handled only after its action has ended.
      return OnMessage(connection, session, frame);
    case FrameKind::JOIN:
      Join(connection, session);
      break;
    case FrameKind::REQUEST:
      OnRequest(connection, frame);
      break;
    case FrameKind::ANSWER:
      throw FrameError("sent an answer to a request that nobody made");
  }
  connection->Handled(size);
}

void IpcService::Join(const ConnectionPointer& connection, SessionId& session) {
  if (session != 0) throw FrameError("joined twice");
  session = ++lastSession_;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    sessions_[session] = connection;
  }
  NORVIK_DETAIL(boost::format("Session %1% is %2%") % std::to_string(session) %
                connection->PeerText());
  if (AccountOf(*connection).sessionStarts.Ask() == RateLimit::Verdict::ALLOWED) {
    events_.onSession(session);
  }
}

void IpcService::OnMessage(const ConnectionPointer& connection, SessionId session,
                           const Frame& frame) {
  if (session == 0) throw FrameError("sent a message before it joined");
  IPCMessage message = DecodeMessage(frame.content);
  const auto handled = [weak = std::weak_ptr<IpcConnection>(connection),
                        size = frame.content.size()] {
    if (const auto alive = weak.lock()) alive->Handled(size);
  };
  if (IsAllowed(Receiver::SERVICE, message)) {
    NORVIK_DETAIL(boost::format("Message %1% of session %2% (%3%)") % Describe(message) %
                  std::to_string(session) % connection->PeerText());
    return events_.onMessage(std::move(message), handled);
  }
  Complain(*connection, "sent the message " + Describe(message) +
                            ", which the service does not accept; it is dropped");
  handled();
}

void IpcService::OnRequest(const ConnectionPointer& connection, const Frame& frame) {
  if (!IsAdministrator(connection->Peer())) {
    throw FrameError("sent a request, which only root and the user of the service may");
  }
  const std::string answer = events_.onRequest(frame.content, connection->PeerText());
  connection->Send(EncodeFrame(FrameKind::ANSWER, answer));
}

void IpcService::OnClosed(const ConnectionPointer& connection, SessionId session,
                          const std::string& problem) {
  if (!problem.empty()) Complain(*connection, problem + "; the connection is closed");
  if (session != 0) {
    const std::lock_guard<std::mutex> lock(mutex_);
    sessions_.erase(session);
  }
  --AccountOf(*connection).connections;
  connections_.erase(connection);
}

}  // namespace Norvik::Host
