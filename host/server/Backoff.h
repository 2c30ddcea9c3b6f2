#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <memory>
#include <random>

#include "host/actions/Clock.h"
#include "host/server/ServerOptions.h"

namespace Norvik::Host {

/// Decides when something that failed may be tried again. The wait doubles with each failure up to
/// a limit, and is shortened at random by up to a half, so that the agents of a server do not all
/// return at once after an outage. For one thread.
class Backoff {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  Backoff(const ServerLimits& limits, std::shared_ptr<const Clock> clock);

  /// Whether an attempt is allowed now.
  bool IsDue() const { return clock_->Steady() >= next_; }
  /// When the next attempt is allowed.
  TimePoint Next() const { return next_; }

  void Succeeded();
  /// @param requested the wait that the server requests; replaces the calculated one, within
  ///        limits, and is extended at random by up to a tenth
  /// @return the wait until the next attempt
  std::chrono::milliseconds Failed(boost::optional<std::chrono::seconds> requested);

 private:
  const ServerLimits limits_;
  const std::shared_ptr<const Clock> clock_;
  std::minstd_rand random_{std::random_device()()};
  int failures_ = 0;
  TimePoint next_ = TimePoint::min();
};

}  // namespace Norvik::Host
