#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>

#include "host/actions/Clock.h"

namespace Norvik::Host {

/// A thread that does one piece of work over and over: when it is woken, and when the work itself
/// wants to be done again. Sleeps in between. Safe on any thread.
class PacedThread {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  /// Answers when it is to be done next; `TimePoint::max()`: not before it is woken. What it raises
  /// is logged and counts as that.
  using Work = std::function<TimePoint()>;

  PacedThread(Work work, std::shared_ptr<const Clock> clock);
  PacedThread(const PacedThread&) = delete;
  PacedThread& operator=(const PacedThread&) = delete;
  ~PacedThread();

  /// Begins with doing the work. Once.
  void Start();
  /// Has the work done (again) as soon as the thread is free. Nothing before `Start`.
  void Wake();
  /// Waits for work that runs; none is done afterwards. Not from inside the work.
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
