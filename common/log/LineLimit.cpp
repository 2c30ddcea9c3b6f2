#include "common/log/LineLimit.h"

#include <utility>

namespace Norvik::Common {

namespace {

constexpr std::chrono::minutes SPAN(1);

std::shared_ptr<LineLimit>& OfThisThread() {
  thread_local std::shared_ptr<LineLimit> limit;
  return limit;
}

}  // namespace

bool LineLimit::Allows(Logger::Level level, TimePoint now) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (now - start_ >= SPAN) {
    start_ = now;
    counts_[0] = counts_[1] = 0;
  }
  const std::size_t kind = level <= Logger::LEVEL_INFORMATION ? 0 : 1;
  if (counts_[kind] < limits_[kind]) {
    ++counts_[kind];
    return true;
  }
  if (leftOut_++ == 0) leftOutSince_ = now;
  return false;
}

std::size_t LineLimit::TakeLeftOut(TimePoint now) {
  const std::lock_guard<std::mutex> lock(mutex_);
  return now - leftOutSince_ < SPAN ? 0 : std::exchange(leftOut_, 0);
}

bool LineLimit::IsUnused(TimePoint now) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return leftOut_ == 0 && now - start_ >= SPAN;
}

LineLimitScope::LineLimitScope(std::shared_ptr<LineLimit> limit)
    : previous_(std::exchange(OfThisThread(), std::move(limit))) {}

LineLimitScope::~LineLimitScope() { OfThisThread() = std::move(previous_); }

std::shared_ptr<LineLimit> LineLimitScope::Current() { return OfThisThread(); }

bool LineLimitScope::Allows(Logger::Level level) {
  LineLimit* const limit = OfThisThread().get();
  return !limit || limit->Allows(level);
}

}  // namespace Norvik::Common
