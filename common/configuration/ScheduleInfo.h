#pragma once

#include <chrono>
#include <cstdint>

namespace Norvik::Common {

/// When something runs. Two plain words, copied bitwise.
struct ScheduleInfo {
  std::int64_t periodSeconds = 0;  ///< 0: once
  std::int64_t next = 0;           ///< next execution, seconds since the epoch

  std::chrono::system_clock::time_point NextTime() const {
    return std::chrono::system_clock::time_point(std::chrono::seconds(next));
  }
};

}  // namespace Norvik::Common
