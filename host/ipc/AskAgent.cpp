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

using OnEvents = std::function<void(const std::string& events)>;

constexpr std::chrono::milliseconds CONNECT_PAUSE(20);
constexpr char TOO_LONG[] = "it took too long";
/// Of an answer in parts. The agent is trusted; this ends a mistake before the memory does.
constexpr std::size_t LONGEST_ANSWER = std::size_t{1} << 30;

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

/// One request and what comes back.
class Conversation {
 public:
  Conversation(IpcConnection& connection, const OnEvents& onEvents)
      : connection_(connection), onEvents_(onEvents) {
    connection_.Start({[this](Frame frame) { OnFrame(std::move(frame)); },
                       [this](const std::string& problem) {
                         reason_ = "the agent " + (problem.empty() ? "hung up" : problem);
                         isOver_ = true;
                       }});
  }

  bool IsOver() const { return isOver_; }
  bool HasEvents() const { return hasEvents_; }
  const boost::optional<std::string>& Answer() const { return answer_; }
  const std::string& Reason() const { return reason_; }

 private:
  void OnFrame(Frame frame) {
    connection_.Handled(frame.content.size());
    parts_ += frame.content;
    if (parts_.size() > LONGEST_ANSWER) throw FrameError("sent an answer without end");
    if (frame.kind == FrameKind::PART) return;
    const std::string content = std::exchange(parts_, {});
    if (frame.kind == FrameKind::EVENTS && onEvents_) {
      hasEvents_ = true;
      return onEvents_(content);
    }
    if (frame.kind != FrameKind::ANSWER) throw FrameError("sent no answer");
    answer_ = content;
    isOver_ = true;
  }

  IpcConnection& connection_;
  const OnEvents& onEvents_;
  bool isOver_ = false;
  bool hasEvents_ = false;
  std::string parts_;
  boost::optional<std::string> answer_;
  std::string reason_ = TOO_LONG;
};

}  // namespace

std::string AskAgent(const boost::filesystem::path& socket, const std::string& request,
                     std::chrono::milliseconds limit, const OnEvents& onEvents) {
  const std::string frame = EncodeFrame(FrameKind::REQUEST, request);
  if (frame.size() > ConnectionLimits().frameBytes) {
    throw std::runtime_error("this is too long for the running agent");
  }
  boost::asio::io_context context(1);
  IpcConnection::Socket stream(context);
  const auto until = steady_clock::now() + limit;
  const int error = Connect(stream, EndpointOf(socket), until);
  if (error == EAGAIN) throw NoAnswer(socket, TOO_LONG, true);
  const auto peer = Platform::CredentialsOfPeer(stream.native_handle());
  if (error != 0 || !peer) {
    throw NoAnswer(socket, std::generic_category().message(error != 0 ? error : errno), false);
  }
  const auto connection =
      std::make_shared<IpcConnection>(std::move(stream), *peer, ConnectionLimits());
  Conversation conversation(*connection, onEvents);
  connection->Send(frame);
  while (!conversation.IsOver()) {
    // Once there are events nothing but the agent ends the wait.
    const bool runs = conversation.HasEvents();
    const std::size_t count = runs ? context.run_one() : context.run_one_until(until);
    if (count == 0) break;
  }
  connection->Abandon();
  if (!conversation.Answer()) throw NoAnswer(socket, conversation.Reason(), true);
  return *conversation.Answer();
}

}  // namespace Norvik::Host
