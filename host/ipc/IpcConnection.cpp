#include "host/ipc/IpcConnection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <cstdint>
#include <thread>
#include <utility>

namespace Norvik::Host {

using boost::system::error_code;

namespace {

/// What a connection occupies besides its frames: itself with its buffer, and what the context, the
/// system's structures and the allocator add.
constexpr std::size_t CONNECTION_BYTES = 16 << 10;
constexpr std::size_t FRAME_BYTES = 512;  ///< likewise, for a frame
/// Of a long content: the length of a frame, and how much may wait for the peer before the next.
constexpr std::size_t PART_BYTES = 256 << 10;
constexpr std::size_t MOST_UNREAD = 512 << 10;
constexpr std::chrono::minutes READING_LIMIT(1);
constexpr std::chrono::milliseconds READING_PAUSE(2);

}  // namespace

IpcConnection::IpcConnection(Socket socket, const Platform::PeerCredentials& peer,
                             const ConnectionLimits& limits, std::shared_ptr<MemoryLimit> memory)
    : socket_(std::move(socket)),
      peer_(peer),
      limits_(limits),
      reader_(limits.frameBytes),
      frameTimer_(socket_.get_executor()),
      receiving_(memory),
      sending_(std::move(memory)) {}

std::string IpcConnection::PeerText() const {
  return "user " + std::to_string(peer_.user) + ", process " + std::to_string(peer_.process);
}

void IpcConnection::Start(Events events) {
  events_ = std::move(events);
  try {
    CountMemory();
  } catch (const FrameError& refused) {
    return CloseNow(refused.what());
  }
  if (limits_.firstFrameTime.count() > 0) {
    Watch(limits_.firstFrameTime, "neither joined nor sent a request in time");
  }
  Read();
}

void IpcConnection::CountMemory() {
  // A waiting frame exists as its content and, for a moment, as the message in it.
  const std::string refusal =
      receiving_.Resize(CONNECTION_BYTES + reader_.Memory() + 2 * waitingBytes_);
  if (!refusal.empty()) throw FrameError("exceeds " + refusal);
}

void IpcConnection::Read() {
  socket_.async_read_some(boost::asio::buffer(buffer_),
                          [self = shared_from_this()](const error_code& error, std::size_t size) {
                            self->OnRead(error, size);
                          });
}

void IpcConnection::OnRead(const error_code& error, std::size_t size) {
  if (closed_) return;
  if (error) return CloseNow(reader_.IsInside() ? "ended inside a frame" : "");
  reader_.Append(buffer_.data(), size);
  DeliverFrames();
}

void IpcConnection::DeliverFrames() {
  try {
    while (!closed_ && waitingBytes_ <= limits_.waitingBytes) {
      auto frame = reader_.Next();
      if (frame) waitingBytes_ += FRAME_BYTES + frame->content.size();
      CountMemory();
      if (!frame) {
        if (reader_.IsInside()) Watch(limits_.frameTime, "did not end a frame in time");
        return Read();
      }
      StopWatch();
      events_.onFrame(std::move(*frame));
    }
  } catch (const FrameError& broken) {
    return CloseNow(broken.what());
  }
  paused_ = true;
}

/// Limits the time of the next frame, however slowly its bytes come. The limit of a frame that is
/// watched already stays.
void IpcConnection::Watch(std::chrono::milliseconds limit, const char* problem) {
  if (std::exchange(watching_, true)) return;
  frameTimer_.expires_after(limit);
  frameTimer_.async_wait([self = shared_from_this(), problem](const error_code& error) {
    // A timer that has expired cannot be cancelled any more.
    const bool late = self->frameTimer_.expiry() <= std::chrono::steady_clock::now();
    if (!error && self->watching_ && late) self->CloseNow(problem);
  });
}

void IpcConnection::StopWatch() {
  if (std::exchange(watching_, false)) frameTimer_.cancel();
}

void IpcConnection::Handled(std::size_t contentSize) {
  boost::asio::post(socket_.get_executor(), [self = shared_from_this(), contentSize] {
    self->waitingBytes_ -= FRAME_BYTES + contentSize;
    if (!std::exchange(self->paused_, false) || self->closed_) return;
    self->DeliverFrames();
  });
}

bool IpcConnection::Send(std::string frame) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (ending_) return false;
  std::string refusal = "the limit of " + std::to_string(limits_.unsentBytes) + " bytes";
  if (unsentBytes_ + frame.size() <= limits_.unsentBytes) {
    refusal = sending_.Resize(unsentBytes_ + frame.size() + FRAME_BYTES * (1 + unsent_.size()));
  }
  if (!refusal.empty()) {
    CloseLater("reads too slowly: what waits for it exceeds " + refusal);
    return false;
  }
  unsentBytes_ += frame.size();
  unsent_.push_back(std::move(frame));
  if (unsent_.size() == 1) {
    boost::asio::post(socket_.get_executor(), [self = shared_from_this()] { self->Write(); });
  }
  return true;
}

/// `mutex_` must be held.
void IpcConnection::CloseLater(const std::string& problem) {
  ending_ = true;
  boost::asio::post(socket_.get_executor(),
                    [self = shared_from_this(), problem] { self->CloseNow(problem); });
}

bool IpcConnection::SendWhole(FrameKind kind, const std::string& content) {
  std::size_t start = 0;
  for (; content.size() - start > PART_BYTES; start += PART_BYTES) {
    if (!WaitForReader()) return false;
    if (!Send(EncodeFrame(FrameKind::PART, content.substr(start, PART_BYTES)))) return false;
  }
  return WaitForReader() && Send(EncodeFrame(kind, content.substr(start)));
}

/// Returns once the peer has read most of what was sent. False if the connection is closed.
bool IpcConnection::WaitForReader() {
  std::size_t left = SIZE_MAX;
  auto since = std::chrono::steady_clock::now();
  for (;; std::this_thread::sleep_for(READING_PAUSE)) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (ending_) return false;
    if (unsentBytes_ <= MOST_UNREAD) return true;
    const auto now = std::chrono::steady_clock::now();
    if (std::exchange(left, unsentBytes_) != unsentBytes_) since = now;
    if (now - since < READING_LIMIT) continue;
    CloseLater("has read nothing for a minute");
    return false;
  }
}

void IpcConnection::Close() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!ending_) CloseLater("");
}

std::size_t IpcConnection::UnsentBytes() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return unsentBytes_;
}

void IpcConnection::Write() {
  if (closed_) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  boost::asio::async_write(socket_, boost::asio::buffer(unsent_.front()),
                           [self = shared_from_this()](const error_code& error, std::size_t) {
                             self->OnWritten(error);
                           });
}

void IpcConnection::OnWritten(const error_code& error) {
  if (closed_) return;
  if (error) return CloseNow("");
  bool more = false;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    unsentBytes_ -= unsent_.front().size();
    unsent_.pop_front();
    sending_.Resize(unsentBytes_ + FRAME_BYTES * unsent_.size());
    more = !unsent_.empty();
  }
  if (more) Write();
}

void IpcConnection::Abandon() {
  events_ = {};
  CloseNow("");
}

void IpcConnection::CloseNow(const std::string& problem) {
  if (std::exchange(closed_, true)) return;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ending_ = true;
  }
  frameTimer_.cancel();
  error_code ignored;
  socket_.close(ignored);
  // The callbacks may own objects that own this connection.
  const Events events = std::exchange(events_, {});
  if (events.onClosed) events.onClosed(problem);
}

}  // namespace Norvik::Host
