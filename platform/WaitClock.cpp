#include "platform/WaitClock.h"

#include <atomic>
#include <thread>

namespace Norvik::Platform {

namespace {

std::atomic<WaitClock*>& Chosen() {
  static std::atomic<WaitClock*> chosen{nullptr};
  return chosen;
}

}  // namespace

WaitClock::~WaitClock() = default;

WaitClock::TimePoint WaitClock::Now() { return std::chrono::steady_clock::now(); }

void WaitClock::SleepFor(std::chrono::milliseconds duration) {
  std::this_thread::sleep_for(duration);
}

WaitClock& WaitClock::Current() {
  static WaitClock real;
  WaitClock* const chosen = Chosen();
  return chosen ? *chosen : real;
}

WaitClockScope::WaitClockScope(WaitClock& clock) : previous_(Chosen().exchange(&clock)) {}

WaitClockScope::~WaitClockScope() { Chosen() = previous_; }

}  // namespace Norvik::Platform
