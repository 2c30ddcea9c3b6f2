#pragma once

#include <mutex>

#include "host/actions/Clock.h"

namespace Norvik::Tests {

/// Both clocks stand still until they are moved.
class FakeActionClock : public Host::Clock {
 public:
  using TimePoint = std::chrono::system_clock::time_point;

  explicit FakeActionClock(long seconds) : now_(std::chrono::seconds(seconds)) {}

  TimePoint Now() const override {
    const std::lock_guard<std::mutex> lock(mutex_);
    return now_;
  }
  std::chrono::steady_clock::time_point Steady() const override {
    const std::lock_guard<std::mutex> lock(mutex_);
    return steady_;
  }
  void Move(std::chrono::seconds time) {
    const std::lock_guard<std::mutex> lock(mutex_);
    now_ += time;
    steady_ += time;
  }
  /// What an administrator does.
  void SetTimeOfDay(long seconds) {
    const std::lock_guard<std::mutex> lock(mutex_);
    now_ = TimePoint(std::chrono::seconds(seconds));
  }

 private:
  mutable std::mutex mutex_;
  TimePoint now_;
  std::chrono::steady_clock::time_point steady_;
};

}  // namespace Norvik::Tests
