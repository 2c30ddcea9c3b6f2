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

/// A small pool of threads that runs what it is given, in the order given. Safe on any thread.
class ActionThreads {
 public:
  explicit ActionThreads(std::size_t count);
  ActionThreads(const ActionThreads&) = delete;
  ActionThreads& operator=(const ActionThreads&) = delete;
  ~ActionThreads();

  /// Timers on this context call back on the pool's threads.
  boost::asio::io_context& Context() { return context_; }

  /// Runs the work on one of the threads. It must not raise. After `Stop` it is dropped.
  void Post(std::function<void()> work);
  /// Waits until no work runs or waits for a thread. Not from inside work.
  void WaitIdle();
  /// Waits for the work that runs; what waits for a thread is dropped. Not from inside work.
  void Stop();
  /// The same, but gives up after a time; false then. No work starts any more in either case.
  bool StopWithin(std::chrono::milliseconds limit);

 private:
  void Run(const std::function<void()>& work);

  boost::asio::io_context context_;
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> guard_;
  std::mutex mutex_;
  std::condition_variable idle_;
  std::size_t active_ = 0;   ///< works that run or wait for a thread
  std::size_t running_ = 0;  ///< works that run
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace Norvik::Host
