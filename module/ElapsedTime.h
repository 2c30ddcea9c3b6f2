#pragma once

#include <chrono>
#include <cstdint>

namespace Norvik::KOB {

/// Whole milliseconds from `start` to now.
inline std::int64_t MillisecondsSince(std::chrono::steady_clock::time_point start) {
  const auto elapsed = std::chrono::steady_clock::now() - start;
  return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
}

}  // namespace Norvik::KOB
