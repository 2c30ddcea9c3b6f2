#include "host/ipc/IpcUser.h"

#include <unistd.h>

#include <algorithm>
#include <boost/format.hpp>
#include <utility>

#include "common/log/Logger.h"
#include "host/ipc/AllowedMessages.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Host {

using namespace Common;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

ConnectionLimits LimitsOfUsersProcess() {
  ConnectionLimits limits;
  limits.waitingBytes = 64 << 20;
  return limits;
}

IpcUser::IpcUser(const boost::filesystem::path& socket, const ReconnectWaits& waits,
                 const ConnectionLimits& limits)
    : path_(socket),
      endpoint_(EndpointOf(socket)),
      waits_(waits),
      limits_(limits),
      guard_(boost::asio::make_work_guard(context_)),
      timer_(context_),
      wait_(waits.first) {}

IpcUser::~IpcUser() { Stop(); }

void IpcUser::Start(OnMessage onMessage) {
  onMessage_ = std::move(onMessage);
  Connect();
  thread_ = std::thread([this] { context_.run(); });
}

void IpcUser::Stop() {
  context_.stop();
  if (thread_.joinable()) thread_.join();
  const std::lock_guard<std::mutex> lock(mutex_);
  if (connection_) connection_->Abandon();
  connection_.reset();
}

std::shared_ptr<IpcConnection> IpcUser::Connection() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return connection_;
}

bool IpcUser::Send(const IPCMessage& message, unsigned long long session) {
  const auto connection = Connection();
  if (session != SERVICE || !connection) return false;
  return connection->Send(EncodeFrame(FrameKind::MESSAGE, EncodeMessage(message)));
}

void IpcUser::Connect() {
  const auto socket = std::make_shared<Socket>(context_);
  socket->async_connect(endpoint_, [this, socket](const boost::system::error_code& error) {
    if (error) return RetryLater(error.message());
    OnConnected(socket);
  });
}

void IpcUser::OnConnected(const std::shared_ptr<Socket>& socket) {
  const auto peer = Platform::CredentialsOfPeer(socket->native_handle());
  if (!peer) return RetryLater("it does not accept the connection");
  if (peer->user != 0 && peer->user != ::geteuid()) {
    return RetryLater("it is served by another user");
  }
  const auto connection = std::make_shared<IpcConnection>(std::move(*socket), *peer, limits_);
  connectedAt_ = steady_clock::now();
  connection->Start({[this](Frame frame) { OnFrame(std::move(frame)); },
                     [this](const std::string& problem) { OnClosed(problem); }});
  connection->Send(EncodeFrame(FrameKind::JOIN, ""));
  NORVIK_INFORMATION(boost::format("Connected to the service at %1%") % path_.string());
  reported_ = false;
  const std::lock_guard<std::mutex> lock(mutex_);
  connection_ = connection;
}

void IpcUser::OnFrame(Frame frame) {
  if (frame.kind != FrameKind::MESSAGE) throw FrameError("sent a frame that is no message");
  IPCMessage message = DecodeMessage(frame.content);
  const auto handled = [weak = std::weak_ptr<IpcConnection>(Connection()),
                        size = frame.content.size()] {
    if (const auto alive = weak.lock()) alive->Handled(size);
  };
  if (IsAllowed(Receiver::USER, message)) return onMessage_(std::move(message), handled);
  NORVIK_WARNING(boost::format("The service sent the message %1%, which a user's process does not "
                               "accept; it is dropped") %
                 Describe(message));
  handled();
}

void IpcUser::OnClosed(const std::string& problem) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    connection_.reset();
  }
  // A service that refuses this user closes each connection at once: the wait keeps growing then.
  if (steady_clock::now() - connectedAt_ > waits_.longest) wait_ = waits_.first;
  RetryLater(problem.empty() ? "the connection ended" : "the service " + problem);
}

void IpcUser::RetryLater(const std::string& reason) {
  if (!std::exchange(reported_, true)) {
    NORVIK_WARNING(boost::format("The service at %1% does not answer: %2%; it is tried again after "
                                 "growing waits") %
                   path_.string() % reason);
  }
  // Spread out, so that the users' processes of a machine do not all connect at once.
  std::uniform_int_distribution<milliseconds::rep> spread(wait_.count() * 3 / 4, wait_.count());
  timer_.expires_after(milliseconds(spread(random_)));
  timer_.async_wait([this](const boost::system::error_code& error) {
    if (!error) Connect();
  });
  wait_ = std::min(wait_ * 2, waits_.longest);
}

}  // namespace Norvik::Host
