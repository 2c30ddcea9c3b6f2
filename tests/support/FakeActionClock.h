#pragma once

#include <atomic>
#include <chrono>

#include "host/actions/Clock.h"

namespace Norvik::Tests {

class FakeActionClock : public Host::Clock {
 public:
  using TimePoint = std::chrono::system_clock::time_point;

  explicit FakeActionClock(long time) : now_(time) {}

  TimePoint Now() const override { return TimePoint(std::chrono::seconds(now_)); }
  std::chrono::steady_clock::time_point Steady() const override {
    return std::chrono::steady_clock::time_point(std::chrono::seconds(steady_));
  }
  void Move(std::chrono::seconds time) {
    now_ += time.count();
    steady_ += time.count();
  }
  /// Changes the time of day only, as an administrator does.
  void SetTimeOfDay(long time) { now_ = time; }

 private:
  std::atomic<long> now_;
  std::atomic<long> steady_{0};
};

}  // namespace Norvik::Tests
