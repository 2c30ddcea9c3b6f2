#include "host/ipc/IpcService.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/asio/post.hpp>
#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "common/log/Logger.h"
#include "host/FreeMemory.h"
#include "host/ipc/AllowedMessages.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Host {

using namespace Common;
using boost::system::error_code;
using std::chrono::minutes;

namespace {

constexpr std::chrono::seconds ACCEPT_RETRY(1);
constexpr std::chrono::seconds TIDY_PAUSE(5);
constexpr std::chrono::seconds QUIET_PAUSE(60);
constexpr std::chrono::milliseconds READERS_PAUSE(5);

bool IsAdministrator(uid_t user) { return user == 0 || user == ::geteuid(); }

}  // namespace

ServiceLimits LimitsFor(std::size_t descriptors) {
  ServiceLimits limits;
  limits.connections = std::min(limits.connections, descriptors / 4);
  limits.reserve = std::min(limits.reserve, descriptors / 16);
  return limits;
}

IpcService::UserAccount::UserAccount(const ServiceLimits& limits,
                                     std::shared_ptr<MemoryLimit> memoryLimit)
    : opened(limits.connectionsInMinute, minutes(1)),
      sessionStarts(limits.sessionStartsInMinute, minutes(1)),
      refusals(0, minutes(1)),
      lines(std::make_shared<LineLimit>(limits.linesInMinute, limits.detailsInMinute)),
      memory(std::move(memoryLimit)) {}

bool IpcService::UserAccount::IsUnused() const {
  return connections == 0 && waiting.empty() && opened.IsUnused() && lines->IsUnused();
}

IpcService::IpcService(const boost::filesystem::path& socket, const ServiceLimits& limits)
    : path_(socket),
      limits_(limits),
      acceptor_(context_),
      acceptTimer_(context_),
      tidyTimer_(context_),
      memoryOfUsers_(std::make_shared<MemoryLimit>(limits.memoryOfUsers, "of all users together")) {
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
  TidyLater();
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
  ReportLinesLeftOut(std::chrono::steady_clock::time_point::max());
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

void IpcService::WaitForReaders(std::size_t mostBytes, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  const auto isBehind = [mostBytes](const auto& session) {
    return session.second->UnsentBytes() > mostBytes;
  };
  const auto waits = [&] {
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::any_of(sessions_.begin(), sessions_.end(), isBehind);
  };
  while (waits() && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(READERS_PAUSE);
  }
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
  UserAccount& account = AccountOf(peer->user);
  const LineLimitScope lines(account.lines);
  const auto connection = std::make_shared<IpcConnection>(std::move(socket), *peer,
                                                          LimitsOf(peer->user), account.memory);
  const std::string reason = ReasonToRefuse(peer->user, account);
  if (reason.empty()) return StartConnection(connection);
  if (account.refusals.Ask() == RateLimit::Verdict::FIRST_REFUSED) {
    NORVIK_WARNING(boost::format("The connection of %1% is refused: %2%; more of them are not "
                                 "logged for a minute") %
                   connection->PeerText() % reason);
  }
}

void IpcService::StartConnection(const ConnectionPointer& connection) {
  UserAccount& account = AccountOf(*connection);
  ++account.connections;
  connections_.insert(connection);
  const auto session = std::make_shared<SessionId>(0);
  connection->Start(
      {[this, raw = connection.get(), lines = account.lines, session](Frame frame) {
         const LineLimitScope scope(lines);
         OnFrame(raw->shared_from_this(), *session, std::move(frame));
       },
       [this, raw = connection.get(), lines = account.lines, session](const std::string& problem) {
         const LineLimitScope scope(lines);
         OnClosed(raw->shared_from_this(), *session, problem);
       }});
}

std::string IpcService::ReasonToRefuse(uid_t user, UserAccount& account) const {
  if (account.opened.Ask() != RateLimit::Verdict::ALLOWED) {
    return "the user opened " + std::to_string(limits_.connectionsInMinute) + " in this minute";
  }
  if (account.connections >= limits_.connectionsOfUser) {
    return "the user has " + std::to_string(account.connections);
  }
  const std::size_t reserves = IsAdministrator(user) ? 2 : account.connections == 0 ? 1 : 0;
  if (connections_.size() >= limits_.connections + reserves * limits_.reserve) {
    return "there are " + std::to_string(connections_.size());
  }
  return "";
}

ConnectionLimits IpcService::LimitsOf(uid_t user) const {
  ConnectionLimits limits = limits_.connection;
  if (!IsAdministrator(user))
    limits.frameBytes = std::min(limits.frameBytes, limits_.userFrameBytes);
  return limits;
}

IpcService::UserAccount& IpcService::AccountOf(uid_t user) {
  const auto found = accounts_.find(user);
  if (found != accounts_.end()) return found->second;
  const bool limited = !IsAdministrator(user);
  auto memory =
      std::make_shared<MemoryLimit>(limited ? limits_.memoryOfUser : limits_.memoryOfAdministrator,
                                    "of one user", limited ? memoryOfUsers_ : nullptr);
  UserAccount& account = accounts_.try_emplace(user, limits_, std::move(memory)).first->second;
  TidyLater();
  return account;
}

IpcService::UserAccount& IpcService::AccountOf(const IpcConnection& connection) {
  return AccountOf(connection.Peer().user);
}

void IpcService::OnFrame(const ConnectionPointer& connection, SessionId& session, Frame frame) {
  releases_ = RELEASES;
  TidyLater();
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
    case FrameKind::EVENTS:
    case FrameKind::ANSWER:
    case FrameKind::PART:
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
  const std::size_t size = frame.content.size();
  if (!IsAllowed(Receiver::SERVICE, message)) {
    NORVIK_WARNING(boost::format("The process of %1% sent the message %2%, which the service does "
                                 "not accept; it is dropped") %
                   connection->PeerText() % Describe(message));
    return connection->Handled(size);
  }
  NORVIK_DETAIL(boost::format("Message %1% of session %2% (%3%)") % Describe(message) %
                std::to_string(session) % connection->PeerText());
  UserAccount& account = AccountOf(*connection);
  if (account.waiting.empty()) turns_.push_back(connection->Peer().user);
  account.waiting.push_back({connection, std::move(message), size});
  HandleNext();
}

/// One message at a time, so that no more than one exists as an action, whose size is a multiple of
/// its own. The users take turns, so that none of them delays the others.
void IpcService::HandleNext() {
  if (handling_ || turns_.empty()) return;
  handling_ = true;
  const uid_t user = turns_.front();
  turns_.pop_front();
  UserAccount& account = AccountOf(user);
  WaitingMessage next = std::move(account.waiting.front());
  account.waiting.pop_front();
  if (!account.waiting.empty()) turns_.push_back(user);
  const auto handled = [this, connection = std::weak_ptr<IpcConnection>(next.connection),
                        size = next.size] {
    boost::asio::post(context_, [=] { OnHandled(connection, size); });
  };
  const LineLimitScope lines(account.lines);
  events_.onMessage(std::move(next.message), {user, next.connection->PeerText()}, handled);
}

void IpcService::OnHandled(const std::weak_ptr<IpcConnection>& connection, std::size_t size) {
  handling_ = false;
  ++handledMessages_;
  if (const auto alive = connection.lock()) alive->Handled(size);
  HandleNext();
}

void IpcService::OnRequest(const ConnectionPointer& connection, const Frame& frame) {
  if (!IsAdministrator(connection->Peer().user)) {
    throw FrameError("sent a request, which only root and the user of the service may");
  }
  events_.onRequest(frame.content, connection);
}

void IpcService::OnClosed(const ConnectionPointer& connection, SessionId session,
                          const std::string& problem) {
  if (!problem.empty()) {
    NORVIK_WARNING(boost::format("The process of %1% %2%; the connection is closed") %
                   connection->PeerText() % problem);
  }
  if (session != 0) {
    const std::lock_guard<std::mutex> lock(mutex_);
    sessions_.erase(session);
  }
  releases_ = RELEASES;
  TidyLater();
  --AccountOf(*connection).connections;
  connections_.erase(connection);
}

/// Without users and without memory to give back the service sleeps.
void IpcService::TidyLater() {
  if (releases_ == 0 && accounts_.empty()) return;
  const auto next = std::chrono::steady_clock::now() + (releases_ > 0 ? TIDY_PAUSE : QUIET_PAUSE);
  if (willTidy_ && tidyTimer_.expiry() <= next) return;
  willTidy_ = true;
  tidyTimer_.expires_at(next);
  tidyTimer_.async_wait([this](const error_code& error) {
    if (error) return;
    willTidy_ = false;
    Tidy();
    TidyLater();
  });
}

void IpcService::Tidy() {
  ReportLinesLeftOut(std::chrono::steady_clock::now());
  for (auto account = accounts_.begin(); account != accounts_.end();) {
    account = account->second.IsUnused() ? accounts_.erase(account) : std::next(account);
  }
  if (releases_ == 0) return;
  --releases_;
  ReleaseFreeMemory();
}

void IpcService::ReportLinesLeftOut(std::chrono::steady_clock::time_point until) {
  for (const auto& [user, account] : accounts_) {
    const std::size_t count = account.lines->TakeLeftOut(until);
    if (count == 0) continue;
    NORVIK_WARNING(boost::format("%1% lines that user %2% caused are left out: at most %3% of one "
                                 "user are logged in a minute, and %4% of the levels above 4") %
                   std::to_string(count) % std::to_string(user) %
                   std::to_string(limits_.linesInMinute) % std::to_string(limits_.detailsInMinute));
  }
}

}  // namespace Norvik::Host
