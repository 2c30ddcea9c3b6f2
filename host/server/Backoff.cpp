#include "host/server/Backoff.h"

#include <algorithm>
#include <utility>

namespace Norvik::Host {

using std::chrono::milliseconds;

Backoff::Backoff(const ServerLimits& limits, std::shared_ptr<const Clock> clock)
    : limits_(limits), clock_(std::move(clock)) {}

void Backoff::Succeeded() {
  failures_ = 0;
  next_ = TimePoint::min();
}

milliseconds Backoff::Failed(boost::optional<std::chrono::seconds> requested) {
  const auto between = [this](milliseconds low, milliseconds high) {
    return milliseconds(
        std::uniform_int_distribution<milliseconds::rep>(low.count(), high.count())(random_));
  };
  constexpr int MOST_DOUBLINGS = 20;
  milliseconds wait;
  if (requested) {
    // Compared as seconds: a server may request more than milliseconds can count.
    const bool tooLong = std::chrono::duration<double>(*requested) > limits_.longestServerWait;
    wait =
        tooLong ? limits_.longestServerWait : std::max<milliseconds>(*requested, limits_.firstWait);
    wait = between(wait, wait + wait / 10);
  } else {
    const int doublings = std::min(failures_, MOST_DOUBLINGS);
    wait = std::min(limits_.firstWait * (1 << doublings), limits_.longestWait);
    wait = between(wait / 2, wait);
  }
  ++failures_;
  next_ = clock_->Steady() + wait;
  return wait;
}

}  // namespace Norvik::Host
