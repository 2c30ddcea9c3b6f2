#pragma once

#include <array>
#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "host/ipc/Frames.h"
#include "host/ipc/MemoryLimit.h"
#include "platform/PeerCredentials.h"

namespace Norvik::Host {

/// The resources that one connection may use.
struct ConnectionLimits {
  std::size_t frameBytes = 1 << 20;   ///< length of a frame
  std::size_t unsentBytes = 4 << 20;  ///< queued for a peer that reads slowly
  /// Received but not handled; beyond it, reading pauses. With 0 one frame is handled at a time.
  std::size_t waitingBytes = 256 << 10;
  std::chrono::milliseconds frameTime{30'000};  ///< from the first byte of a frame to its last
  std::chrono::milliseconds firstFrameTime{0};  ///< until the first frame has come; 0: no limit
};

/// One end of a connection between two processes of the agent: whole frames in both directions. It
/// closes itself when the peer violates the protocol or exceeds a limit. Create it with
/// `std::make_shared`; it owns itself until it is closed. The callbacks run on the thread of the
/// socket's context, which exactly one thread must run.
class IpcConnection : public std::enable_shared_from_this<IpcConnection> {
 public:
  using Socket = boost::asio::local::stream_protocol::socket;

  struct Events {
    /// Each frame requires one call of `Handled` with the size of its content. A `FrameError` that
    /// it throws closes the connection.
    std::function<void(Frame frame)> onFrame;
    /// The last call, made once. `problem` says what the peer did wrong; empty if the connection
    /// just ended.
    std::function<void(const std::string& problem)> onClosed;
  };

  /// @param socket must be connected
  /// @param memory has to grant what the connection occupies; null: nothing is limited
  IpcConnection(Socket socket, const Platform::PeerCredentials& peer,
                const ConnectionLimits& limits, std::shared_ptr<MemoryLimit> memory = nullptr);

  /// Begins to read.
  void Start(Events events);
  /// Queues an encoded frame. False if the connection is closed; a full queue closes it. Safe on
  /// any thread.
  bool Send(std::string frame);
  /// Sends a content of any length in frames of bounded length, and waits while the peer has much
  /// left to read. False if the connection is closed, as it is if the peer reads nothing for a
  /// minute. Safe on any thread but that of the context.
  bool SendWhole(FrameKind kind, const std::string& content);
  /// Reports that a frame has been handled. Safe on any thread.
  void Handled(std::size_t contentSize);
  /// The bytes that are queued for the peer. Safe on any thread.
  std::size_t UnsentBytes() const;
  /// Closes the connection soon. Safe on any thread.
  void Close();
  /// Closes the connection without a callback. Only when no thread runs the context any more.
  void Abandon();

  const Platform::PeerCredentials& Peer() const { return peer_; }
  /// "user 501, process 4711"
  std::string PeerText() const;

 private:
  void Read();
  void OnRead(const boost::system::error_code& error, std::size_t size);
  void DeliverFrames();
  void CountMemory();
  void Watch(std::chrono::milliseconds limit, const char* problem);
  void StopWatch();
  void Write();
  void OnWritten(const boost::system::error_code& error);
  bool WaitForReader();
  void CloseLater(const std::string& problem);
  void CloseNow(const std::string& problem);

  // Used on the context's thread only.
  Socket socket_;
  const Platform::PeerCredentials peer_;
  const ConnectionLimits limits_;
  Events events_;
  FrameReader reader_;
  std::array<char, 8192> buffer_;
  boost::asio::steady_timer frameTimer_;
  std::size_t waitingBytes_ = 0;
  bool watching_ = false;  ///< the timer runs for the frame that has begun, or the first one
  bool paused_ = false;
  bool closed_ = false;
  MemoryShare receiving_;

  mutable std::mutex mutex_;
  std::deque<std::string> unsent_;  ///< the first is being written
  std::size_t unsentBytes_ = 0;
  MemoryShare sending_;
  bool ending_ = false;  ///< no further frame is accepted
};

}  // namespace Norvik::Host
