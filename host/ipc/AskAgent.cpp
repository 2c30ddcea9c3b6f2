#include "host/ipc/AskAgent.h"

#include <boost/asio/io_context.hpp>
#include <boost/optional.hpp>
#include <memory>
#include <utility>

#include "host/ipc/IpcConnection.h"
#include "host/ipc/SocketPath.h"

namespace Norvik::Host {

namespace {

std::string TextOf(const boost::filesystem::path& socket, const std::string& reason) {
  return "no agent answers at " + socket.string() + ": " + reason;
}

}  // namespace

std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit) {
  boost::asio::io_context context(1);
  IpcConnection::Socket stream(context);
  boost::system::error_code error;
  stream.connect(EndpointOf(socket), error);
  const auto peer = Platform::CredentialsOfPeer(stream.native_handle());
  if (error || !peer) throw NoAnswer(TextOf(socket, error.message()));

  boost::optional<std::string> answer;
  std::string reason = "it took too long";
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
  context.run_for(limit);
  connection->Abandon();
  if (!answer) throw NoAnswer(TextOf(socket, reason));
  return *answer;
}

}  // namespace Norvik::Host
