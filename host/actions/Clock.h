#pragma once

#include <chrono>

namespace Norvik::Host {

/// The agent's two clocks: delays use the steady one, appointments the time of day, which may be
/// set while the agent runs. Safe on any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The time of day.
  virtual std::chrono::system_clock::time_point Now() const {
    return std::chrono::system_clock::now();
  }
  virtual std::chrono::steady_clock::time_point Steady() const {
    return std::chrono::steady_clock::now();
  }

  Clock() = default;
  Clock(const Clock&) = delete;
  Clock& operator=(const Clock&) = delete;
};

}  // namespace Norvik::Host
