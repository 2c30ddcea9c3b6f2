#include "host/run/ChangeNotice.h"

#include <charconv>
#include <string>

#include "common/action/InventorySchedules.h"
#include "common/database/DataBase.h"

namespace Norvik::Host {

using namespace Common;
using std::chrono::seconds;
using std::chrono::system_clock;

namespace {

/// The module waits so much longer than the period.
constexpr seconds DELAY(10);

seconds LeastPeriod() {
  V2::DataBase dataBase;
  const auto rows =
      dataBase.ExecuteSentence("select value from KOB_DATA WHERE name='inventory_changed_period'");
  std::int64_t period = 0;
  if (!rows.empty()) {
    const auto& text = boost::get<std::string>(rows.front().front());
    std::from_chars(text.data(), text.data() + text.size(), period);
  }
  return seconds(period);
}

}  // namespace

boost::optional<system_clock::time_point> InventoryAfterChange(system_clock::time_point now) {
  const auto last = system_clock::from_time_t(V2::DataBase::GetDataTable(LAST_INVENTORY_KEY));
  if (system_clock::to_time_t(now) <= system_clock::to_time_t(last)) return boost::none;
  const seconds period = LeastPeriod();
  if (now - last >= period) return now;
  return last + period + DELAY;
}

}  // namespace Norvik::Host
