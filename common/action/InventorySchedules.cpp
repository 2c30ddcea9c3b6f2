#include "common/action/InventorySchedules.h"

#include <algorithm>

#include "common/database/DataBase.h"

namespace Norvik::Common {

namespace {

using std::chrono::system_clock;

/// A server may send any 64-bit number; this keeps sums within the range of the clock.
std::int64_t Bounded(std::int64_t seconds) {
  constexpr std::int64_t LIMIT = 4'000'000'000;
  return std::clamp<std::int64_t>(seconds, 0, LIMIT);
}

std::int64_t Now() { return system_clock::to_time_t(system_clock::now()); }

/// The first of the schedule's times at or after `earliest`; its only time if it has no period.
std::int64_t FirstTime(const ScheduleInfo& schedule, std::int64_t earliest) {
  const std::int64_t next = Bounded(schedule.next);
  const std::int64_t period = Bounded(schedule.periodSeconds);
  if (period == 0 || next >= earliest) return next;
  return next + (earliest - next + period - 1) / period * period;
}

}  // namespace

boost::optional<ScheduleInfo> CheckInventoryNextExecutionInit(
    const boost::optional<ScheduleInfo>& schedule) {
  if (!schedule) return boost::none;
  return ScheduleInfo{schedule->periodSeconds, FirstTime(*schedule, Now())};
}

system_clock::time_point CheckInventoryNextExecutionReboot(
    const std::string& key, const boost::optional<ScheduleInfo>& schedule) {
  const auto none = system_clock::from_time_t(0);
  if (!schedule) return none;
  const std::int64_t lastRun = V2::DataBase::GetDataTable(key);
  if (lastRun <= 0) return none;
  const std::int64_t next = FirstTime(*schedule, lastRun + 1);
  if (next <= lastRun) return none;
  return system_clock::from_time_t(std::max(next, Now()));
}

}  // namespace Norvik::Common
