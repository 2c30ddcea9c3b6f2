#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "host/actions/Clock.h"

namespace Norvik::Host {

/// A thread that repeats one piece of work: when it is woken, and at the time that the work itself
/// requests. Sleeps in between. Safe on any thread.
class PacedThread {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  /// Returns the time of its next run; `TimePoint::max()`: not before the thread is woken. An
  /// exception is logged and has the same effect.
  using Work = std::function<TimePoint()>;

  PacedThread(Work work, std::shared_ptr<const Clock> clock);
  PacedThread(const PacedThread&) = delete;
  PacedThread& operator=(const PacedThread&) = delete;
  ~PacedThread();

  /// Starts the thread, which runs the work at once. Has an effect only the first time.
  void Start();
  /// Runs the work again as soon as the thread is free. Has no effect before `Start`.
  void Wake();
  /// Waits for work that runs; none runs afterwards. Must not be called from inside the work.
  void Stop();

 private:
  void Run();
  TimePoint WorkLogged();

  const Work work_;
  const std::shared_ptr<const Clock> clock_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool woken_ = true;
  bool stopped_ = false;
  std::thread thread_;
};

}  // namespace Norvik::Host
