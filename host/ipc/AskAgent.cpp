#include "host/ipc/AskAgent.h"

#include <sys/socket.h>

#include <boost/asio/io_context.hpp>
#include <boost/optional.hpp>
#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

#include "host/ipc/IpcConnection.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Host {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::milliseconds CONNECT_PAUSE(20);

/// The error number of the attempt to connect; EAGAIN if the agent did not accept it in time.
/// Without a wait in the system, which has no limit while the agent accepts nothing.
int Connect(IpcConnection::Socket& socket,
            const boost::asio::local::stream_protocol::endpoint& endpoint,
            steady_clock::time_point until) {
  socket.open();
  socket.non_blocking(true);
  while (::connect(socket.native_handle(), endpoint.data(),
                   static_cast<socklen_t>(endpoint.size())) != 0) {
    if (errno != EAGAIN) return errno;
    if (steady_clock::now() >= until) return EAGAIN;
    std::this_thread::sleep_for(CONNECT_PAUSE);
  }
  return 0;
}

}  // namespace

std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit) {
  boost::asio::io_context context(1);
  IpcConnection::Socket stream(context);
  const auto until = steady_clock::now() + limit;
  std::string reason = "it took too long";
  const int error = Connect(stream, EndpointOf(socket), until);
  if (error == EAGAIN) throw NoAnswer(socket, reason, true);
  const auto peer = Platform::CredentialsOfPeer(stream.native_handle());
  if (error != 0 || !peer) {
    throw NoAnswer(socket, std::generic_category().message(error != 0 ? error : errno), false);
  }

  boost::optional<std::string> answer;
  const auto connection =
      std::make_shared<IpcConnection>(std::move(stream), *peer, ConnectionLimits());
  connection->Start({[&](Frame frame) {
                       if (frame.kind != FrameKind::ANSWER) throw FrameError("sent no answer");
                       answer = std::move(frame.content);
                       context.stop();
                     },
                     [&](const std::string& problem) {
                       reason = "the agent " + (problem.empty() ? "hung up" : problem);
                     }});
  connection->Send(EncodeFrame(FrameKind::REQUEST, request));
  context.run_until(until);
  connection->Abandon();
  if (!answer) throw NoAnswer(socket, reason, true);
  return *answer;
}

}  // namespace Norvik::Host
