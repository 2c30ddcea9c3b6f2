#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace Norvik::Common {

/// The times at which something runs. Two plain 64-bit words, so that it can be copied bitwise.
struct ScheduleInfo {
  std::int64_t periodSeconds = 0;  ///< 0: once
  std::int64_t next = 0;           ///< next execution, seconds since the epoch

  /// `next` as a point in time; at most the year 2096, within the range of every system's clock.
  std::chrono::system_clock::time_point NextTime() const {
    constexpr std::int64_t LATEST = 4'000'000'000;
    return std::chrono::system_clock::time_point(
        std::chrono::seconds(std::clamp<std::int64_t>(next, 0, LATEST)));
  }
};

}  // namespace Norvik::Common
