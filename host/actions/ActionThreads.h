#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Norvik::Host {

/// A small thread pool that starts work in the order in which it is posted. Safe on any thread.
class ActionThreads {
 public:
  explicit ActionThreads(std::size_t count);
  ActionThreads(const ActionThreads&) = delete;
  ActionThreads& operator=(const ActionThreads&) = delete;
  ~ActionThreads();

  /// The context that the threads run: timers on it call back on the pool's threads.
  boost::asio::io_context& Context() { return context_; }

  /// Runs the work on one of the threads. It must not throw. After `Stop` it is dropped.
  void Post(std::function<void()> work);
  /// Waits until no work runs or waits for a thread. Must not be called from inside work.
  void WaitIdle();
  /// Waits for the work that runs; work that waits for a thread is dropped. Must not be called from
  /// inside work.
  void Stop();
  /// Like `Stop`, but waits at most for the limit; false if work still runs then. No work starts
  /// any more in either case.
  bool StopWithin(std::chrono::milliseconds limit);

 private:
  void Run(const std::function<void()>& work);

  boost::asio::io_context context_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_;
  std::mutex mutex_;
  std::condition_variable idle_;
  std::size_t active_ = 0;   ///< number of posts that run or wait for a thread
  std::size_t running_ = 0;  ///< number of posts that run
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace Norvik::Host
