#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <mutex>

#include "common/Api.h"
#include "common/log/Logger.h"

namespace Norvik::Common {

/// How many lines of the log file one party may cause in a minute. Safe on any thread.
class NORVIK_COMMON_API LineLimit {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// @param lines   of the levels that are logged by default
  /// @param details of the levels above them
  LineLimit(std::size_t lines, std::size_t details) : limits_{lines, details} {}

  /// Whether one more line may be written. Counts it, or counts it as left out.
  bool Allows(Logger::Level level, TimePoint now = std::chrono::steady_clock::now());
  /// The number of lines left out, once a minute has passed since the first of them; 0 until then.
  /// Each line is returned once.
  std::size_t TakeLeftOut(TimePoint now = std::chrono::steady_clock::now());
  /// Whether nothing was counted for a minute and every line left out was taken.
  bool IsUnused(TimePoint now = std::chrono::steady_clock::now()) const;
  std::size_t Lines() const { return limits_[0]; }

 private:
  const std::size_t limits_[2];
  mutable std::mutex mutex_;
  std::size_t counts_[2] = {0, 0};  ///< in the minute since `start_`
  TimePoint start_{};
  std::size_t leftOut_ = 0;
  TimePoint leftOutSince_{};
};

/// What this thread writes to the log file during the scope counts for a limit. Scopes may nest;
/// the inner one counts.
class NORVIK_COMMON_API LineLimitScope {
 public:
  /// @param limit null: the lines are not limited
  explicit LineLimitScope(std::shared_ptr<LineLimit> limit);
  LineLimitScope(const LineLimitScope&) = delete;
  LineLimitScope& operator=(const LineLimitScope&) = delete;
  ~LineLimitScope();

  /// The limit in force on this thread, to be carried to another one; null without a scope.
  static std::shared_ptr<LineLimit> Current();
  /// Asks the limit in force, if there is one.
  static bool Allows(Logger::Level level);

 private:
  std::shared_ptr<LineLimit> previous_;
};

}  // namespace Norvik::Common
