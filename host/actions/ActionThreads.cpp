#include "host/actions/ActionThreads.h"

#include <boost/asio/post.hpp>
#include <utility>

#include "common/log/LineLimit.h"

namespace Norvik::Host {

ActionThreads::ActionThreads(std::size_t count) : guard_(boost::asio::make_work_guard(context_)) {
  for (std::size_t i = 0; i < count; ++i) threads_.emplace_back([this] { context_.run(); });
}

ActionThreads::~ActionThreads() { Stop(); }

void ActionThreads::Post(std::function<void()> work) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_) return;
    ++active_;
  }
  // What a user's message causes counts for that user on this thread, too.
  boost::asio::post(context_,
                    [this, work = std::move(work), lines = Common::LineLimitScope::Current()] {
                      const Common::LineLimitScope scope(lines);
                      Run(work);
                    });
}

void ActionThreads::Run(const std::function<void()>& work) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (stopping_) {
      if (--active_ == 0) idle_.notify_all();
      return;
    }
    ++running_;
  }
  work();
  const std::lock_guard<std::mutex> lock(mutex_);
  --active_;
  --running_;
  if (active_ == 0 || running_ == 0) idle_.notify_all();
}

void ActionThreads::WaitIdle() {
  std::unique_lock<std::mutex> lock(mutex_);
  idle_.wait(lock, [this] { return active_ == 0; });
}

bool ActionThreads::StopWithin(std::chrono::milliseconds limit) {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    stopping_ = true;
    if (!idle_.wait_for(lock, limit, [this] { return running_ == 0; })) return false;
  }
  Stop();
  return true;
}

void ActionThreads::Stop() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    stopping_ = true;
  }
  guard_.reset();
  for (auto& thread : threads_) {
    if (thread.joinable()) thread.join();
  }
}

}  // namespace Norvik::Host
