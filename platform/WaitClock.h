#pragma once

#include <chrono>

namespace Norvik::Platform {

/// The clock that waits go by. The plain one is the system's; a test derives its own.
class WaitClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  WaitClock() = default;
  WaitClock(const WaitClock&) = delete;
  WaitClock& operator=(const WaitClock&) = delete;
  virtual ~WaitClock();

  virtual TimePoint Now();
  virtual void SleepFor(std::chrono::milliseconds duration);

  /// The one in force, on every thread.
  static WaitClock& Current();
};

/// Puts a clock in force for a scope. The clock must outlive it.
class WaitClockScope {
 public:
  explicit WaitClockScope(WaitClock& clock);
  WaitClockScope(const WaitClockScope&) = delete;
  WaitClockScope& operator=(const WaitClockScope&) = delete;
  ~WaitClockScope();

 private:
  WaitClock* previous_;
};

}  // namespace Norvik::Platform
