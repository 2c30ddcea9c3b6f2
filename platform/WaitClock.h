#pragma once

#include <chrono>

namespace Norvik::Platform {

/// The clock of all waits. This class uses the system's; tests derive their own from it.
class WaitClock {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  WaitClock() = default;
  WaitClock(const WaitClock&) = delete;
  WaitClock& operator=(const WaitClock&) = delete;
  virtual ~WaitClock();

  virtual TimePoint Now();
  virtual void SleepFor(std::chrono::milliseconds duration);

  /// The clock in force, for all threads.
  static WaitClock& Current();
};

/// Sets the clock for the time of a scope. The clock must outlive it.
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
