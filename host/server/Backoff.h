#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <memory>
#include <random>

#include "host/actions/Clock.h"
#include "host/server/ServerOptions.h"

namespace Norvik::Host {

/// When something that fails may be tried again: behind each failure the wait doubles up to a
/// limit, and a random part of it, up to a half, is left out, so that the agents of a server that
/// comes back do not come all at once. Not for two threads at once.
class Backoff {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  Backoff(const ServerLimits& limits, std::shared_ptr<const Clock> clock);

  /// Nothing forbids a try now.
  bool IsDue() const { return clock_->Steady() >= next_; }
  TimePoint Next() const { return next_; }

  void Succeeded();
  /// @param asked the wait that the server asks for; counts instead of the own one, within limits,
  ///        and gets longer by up to a tenth
  /// @return the wait
  std::chrono::milliseconds Failed(boost::optional<std::chrono::seconds> asked);

 private:
  const ServerLimits limits_;
  const std::shared_ptr<const Clock> clock_;
  std::minstd_rand random_{std::random_device()()};
  int failures_ = 0;
  TimePoint next_ = TimePoint::min();
};

}  // namespace Norvik::Host
