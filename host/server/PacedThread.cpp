#include "host/server/PacedThread.h"

#include <boost/format.hpp>
#include <exception>
#include <utility>

#include "common/log/Logger.h"

namespace Norvik::Host {

PacedThread::PacedThread(Work work, std::shared_ptr<const Clock> clock)
    : work_(std::move(work)), clock_(std::move(clock)) {}

PacedThread::~PacedThread() { Stop(); }

void PacedThread::Start() {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (!thread_.joinable() && !stopped_) thread_ = std::thread([this] { Run(); });
}

void PacedThread::Wake() {
  const std::lock_guard<std::mutex> lock(mutex_);
  woken_ = true;
  changed_.notify_all();
}

void PacedThread::Stop() {
  std::thread ending;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
    ending = std::move(thread_);
  }
  if (ending.joinable()) ending.join();
}

PacedThread::TimePoint PacedThread::WorkLogged() {
  try {
    return work_();
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("The delivery to the server failed: %1%") % error.what());
  }
  return TimePoint::max();
}

void PacedThread::Run() {
  const auto isCalled = [this] { return woken_ || stopped_; };
  std::unique_lock<std::mutex> lock(mutex_);
  while (!stopped_) {
    woken_ = false;
    lock.unlock();
    const TimePoint next = WorkLogged();
    lock.lock();
    if (next == TimePoint::max()) {
      changed_.wait(lock, isCalled);
    } else {
      changed_.wait_for(lock, next - clock_->Steady(), isCalled);
    }
  }
}

}  // namespace Norvik::Host
