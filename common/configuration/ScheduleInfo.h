#pragma once

#include <chrono>
#include <cstdint>

namespace Norvik::Common {

/// The times at which something runs. Two plain 64-bit words, so that it can be copied bitwise.
struct ScheduleInfo {
  std::int64_t periodSeconds = 0;  ///< 0: once
  std::int64_t next = 0;           ///< next execution, seconds since the epoch

  /// `next` as a point in time; it must be within the range of the clock.
  std::chrono::system_clock::time_point NextTime() const {
    return std::chrono::system_clock::time_point(std::chrono::seconds(next));
  }
};

}  // namespace Norvik::Common
