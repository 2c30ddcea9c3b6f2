#pragma once

#include <functional>

#include "platform/WaitClock.h"
#include "support/Test.h"

namespace Norvik::Tests {

/// A clock that advances only while something waits. In force as long as it lives.
struct FakeWaitClock final : Platform::WaitClock {
  TimePoint Now() override { return TimePoint() + waited.load(); }
  void SleepFor(milliseconds duration) override {
    waits.push_back(duration);
    meanwhile(waits.size());
    waited = waited.load() + duration;
  }

  std::function<void(std::size_t wait)> meanwhile = [](std::size_t) {};  ///< called at each wait
  std::vector<milliseconds> waits;
  std::atomic<milliseconds> waited{milliseconds(0)};

 private:
  const Platform::WaitClockScope scope_{*this};
};

}  // namespace Norvik::Tests
