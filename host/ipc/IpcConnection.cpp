#include "host/ipc/IpcConnection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <utility>

namespace Norvik::Host {

using boost::system::error_code;

IpcConnection::IpcConnection(Socket socket, const Platform::PeerCredentials& peer,
                             const ConnectionLimits& limits)
    : socket_(std::move(socket)),
      peer_(peer),
      limits_(limits),
      reader_(limits.frameBytes),
      frameTimer_(socket_.get_executor()) {}

std::string IpcConnection::PeerText() const {
  return "user " + std::to_string(peer_.user) + ", process " + std::to_string(peer_.process);
}

void IpcConnection::Start(Events events) {
  events_ = std::move(events);
  Read();
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
      if (!frame) {
        WatchFrame();
        return Read();
      }
      waitingBytes_ += 1 + frame->content.size();
      StopWatch();
      events_.onFrame(std::move(*frame));
    }
  } catch (const FrameError& broken) {
    return CloseNow(broken.what());
  }
  paused_ = true;
}

/// Limits the time of the unfinished frame, however slowly its bytes come.
void IpcConnection::WatchFrame() {
  if (watching_ || !reader_.IsInside()) return;
  watching_ = true;
  frameTimer_.expires_after(limits_.frameTime);
  frameTimer_.async_wait([self = shared_from_this()](const error_code& error) {
    // A timer that has expired cannot be cancelled any more.
    const bool late = self->frameTimer_.expiry() <= std::chrono::steady_clock::now();
    if (!error && self->watching_ && late) self->CloseNow("did not end a frame in time");
  });
}

void IpcConnection::StopWatch() {
  if (std::exchange(watching_, false)) frameTimer_.cancel();
}

void IpcConnection::Handled(std::size_t contentSize) {
  boost::asio::post(socket_.get_executor(), [self = shared_from_this(), contentSize] {
    self->waitingBytes_ -= 1 + contentSize;
    if (!std::exchange(self->paused_, false) || self->closed_) return;
    self->DeliverFrames();
  });
}

bool IpcConnection::Send(std::string frame) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (ending_) return false;
  unsentBytes_ += frame.size();
  unsent_.push_back(std::move(frame));
  if (unsentBytes_ > limits_.unsentBytes) {
    ending_ = true;
    boost::asio::post(socket_.get_executor(),
                      [self = shared_from_this()] { self->CloseNow("reads too slowly"); });
    return false;
  }
  if (unsent_.size() == 1) {
    boost::asio::post(socket_.get_executor(), [self = shared_from_this()] { self->Write(); });
  }
  return true;
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
