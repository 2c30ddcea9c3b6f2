#pragma once

#include <array>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

#include "host/actions/ActionLanes.h"

namespace Norvik::Host {

/// Threads for the lanes of actions. Each lane starts work in the order in which it is posted, on
/// its own threads: one at first, and more as long as work waits, up to a limit. Safe on any
/// thread.
class ActionThreads {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// Work that waits too long.
  struct LateLane {
    Lane lane;
    std::size_t waiting;  ///< number of posts that wait
  };

  /// @param most the largest number of threads of one lane; 0: nothing ever runs
  explicit ActionThreads(std::size_t most);
  ActionThreads(const ActionThreads&) = delete;
  ActionThreads& operator=(const ActionThreads&) = delete;
  ~ActionThreads();

  /// A context for timers, with a thread of its own.
  boost::asio::io_context& Context() { return context_; }

  /// Runs the work on a thread of the lane. It must not throw. After `Stop` it is dropped.
  /// @param now the current time, for `TakeLate`
  void Post(Lane lane, TimePoint now, std::function<void()> work);
  /// The lanes with work that has waited since before this time. A lane comes only once until all
  /// of its work has started.
  std::vector<LateLane> TakeLate(TimePoint before);
  /// Waits until no work runs or waits for a thread. Must not be called from inside work.
  void WaitIdle();
  /// Waits for the work that runs; work that waits for a thread is dropped. Must not be called from
  /// inside work.
  void Stop();
  /// Like `Stop`, but waits at most for the limit; false if work still runs then. No work starts
  /// any more in either case.
  bool StopWithin(std::chrono::milliseconds limit);

 private:
  struct Item {
    TimePoint time;
    std::function<void()> work;
  };
  struct Queue {
    std::deque<Item> waiting;
    std::size_t threads = 0;
    std::size_t free = 0;  ///< threads that wait for work
    bool isLate = false;   ///< `TakeLate` has returned it
    std::condition_variable posted;
  };

  void AddThread(Queue& queue);
  void Run(Queue& queue);
  bool IsIdle() const;
  void DropWaiting();

  const std::size_t most_;
  boost::asio::io_context context_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_;
  std::mutex mutex_;
  std::condition_variable idle_;
  std::array<Queue, LANES> queues_;
  std::size_t running_ = 0;  ///< number of posts that run
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace Norvik::Host
