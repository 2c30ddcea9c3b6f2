#include "host/actions/ActionThreads.h"

#include <algorithm>
#include <boost/format.hpp>
#include <system_error>
#include <utility>

#include "common/log/LineLimit.h"
#include "common/log/Logger.h"

namespace Norvik::Host {

ActionThreads::ActionThreads(std::size_t most)
    : most_(most), guard_(boost::asio::make_work_guard(context_)) {
  if (most_ == 0) return;
  threads_.emplace_back([this] { context_.run(); });
  const std::lock_guard<std::mutex> lock(mutex_);
  for (Queue& queue : queues_) AddThread(queue);
}

ActionThreads::~ActionThreads() { Stop(); }

/// `mutex_` must be held.
void ActionThreads::AddThread(Queue& queue) {
  threads_.emplace_back([this, &queue] { Run(queue); });
  ++queue.threads;
  ++queue.free;
}

void ActionThreads::Post(Lane lane, TimePoint now, std::function<void()> work) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (stopping_) return;
  Queue& queue = queues_[static_cast<std::size_t>(lane)];
  // What a user's message causes counts for that user on this thread, too.
  queue.waiting.push_back(
      {now, [work = std::move(work), lines = Common::LineLimitScope::Current()] {
         const Common::LineLimitScope scope(lines);
         work();
       }});
  queue.posted.notify_one();
  if (queue.waiting.size() <= queue.free || queue.threads >= most_) return;
  try {
    AddThread(queue);
  } catch (const std::system_error& error) {
    // The lane's first thread exists: the work runs later.
    NORVIK_WARNING(boost::format("No further thread for %1%: %2%") % NameOf(lane) % error.what());
  }
}

void ActionThreads::Run(Queue& queue) {
  std::unique_lock<std::mutex> lock(mutex_);
  for (;;) {
    queue.posted.wait(lock, [&] { return stopping_ || !queue.waiting.empty(); });
    if (stopping_) return;
    {
      const Item item = std::move(queue.waiting.front());
      queue.waiting.pop_front();
      if (queue.waiting.empty()) queue.isLate = false;
      --queue.free;
      ++running_;
      lock.unlock();
      item.work();
    }
    lock.lock();
    ++queue.free;
    --running_;
    if (running_ == 0) idle_.notify_all();
  }
}

/// `mutex_` must be held.
bool ActionThreads::IsIdle() const {
  return running_ == 0 && std::all_of(queues_.begin(), queues_.end(),
                                      [](const Queue& queue) { return queue.waiting.empty(); });
}

std::vector<ActionThreads::LateLane> ActionThreads::TakeLate(TimePoint before) {
  std::vector<LateLane> late;
  const std::lock_guard<std::mutex> lock(mutex_);
  for (std::size_t i = 0; i < queues_.size(); ++i) {
    Queue& queue = queues_[i];
    if (queue.isLate || queue.waiting.empty() || queue.waiting.front().time >= before) continue;
    queue.isLate = true;
    late.push_back({static_cast<Lane>(i), queue.waiting.size()});
  }
  return late;
}

void ActionThreads::WaitIdle() {
  std::unique_lock<std::mutex> lock(mutex_);
  idle_.wait(lock, [this] { return IsIdle(); });
}

/// Starts nothing any more. `mutex_` must be held.
void ActionThreads::DropWaiting() {
  stopping_ = true;
  for (Queue& queue : queues_) {
    queue.waiting.clear();
    queue.posted.notify_all();
  }
  if (running_ == 0) idle_.notify_all();
}

bool ActionThreads::StopWithin(std::chrono::milliseconds limit) {
  {
    std::unique_lock<std::mutex> lock(mutex_);
    DropWaiting();
    if (!idle_.wait_for(lock, limit, [this] { return running_ == 0; })) return false;
  }
  Stop();
  return true;
}

void ActionThreads::Stop() {
  std::vector<std::thread> ending;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    DropWaiting();
    ending.swap(threads_);
  }
  guard_.reset();
  for (auto& thread : ending) thread.join();
}

}  // namespace Norvik::Host
