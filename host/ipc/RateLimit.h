#pragma once

#include <chrono>
#include <cstddef>

namespace Norvik::Host {

/// Allows something a number of times within each span of time. For one thread.
class RateLimit {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;
  /// The first refusal of a span is marked, so that a flood leaves one line in the log.
  enum class Verdict { ALLOWED, FIRST_REFUSED, REFUSED };

  RateLimit(std::size_t times, std::chrono::seconds span) : times_(times), span_(span) {}

  Verdict Ask(TimePoint now = std::chrono::steady_clock::now()) {
    if (count_ == 0 || now - start_ >= span_) {
      start_ = now;
      count_ = 0;
    }
    if (count_ < times_ + 2) ++count_;
    if (count_ <= times_) return Verdict::ALLOWED;
    return count_ == times_ + 1 ? Verdict::FIRST_REFUSED : Verdict::REFUSED;
  }

  /// Whether nothing was asked for the length of a span.
  bool IsUnused(TimePoint now = std::chrono::steady_clock::now()) const {
    return count_ == 0 || now - start_ >= span_;
  }

 private:
  std::size_t times_;
  std::chrono::seconds span_;
  std::size_t count_ = 0;  ///< in this span; stops at two more than allowed
  TimePoint start_{};
};

}  // namespace Norvik::Host
