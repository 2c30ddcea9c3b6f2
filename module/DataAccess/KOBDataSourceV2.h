#pragma once

#include <chrono>
#include <vector>

#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::KOB {

/// The module's named values (table "KOB_DATA", every value a decimal text) and the last known
/// software (table "KOB_REGISTERED_SOFTWARE"). The operations do not throw: they log a
/// failure as an error and return false or 0, so a getter returns 0 for an absent key, a failure or
/// a stored 0. Thread-safe. Times are stored as whole seconds since the epoch, the period in
/// seconds.
class KOBDataSourceV2 {
 public:
  using TimePoint = std::chrono::system_clock::time_point;

  static bool updateLastInventoryChanged(const TimePoint& time);
  static bool updateInventoryChangedPeriod(const unsigned int& seconds);
  static bool updateScheduleInventoryID(const unsigned int& id);
  static bool updateRudCompletoLastInventory(const TimePoint& time);
  static bool updateDateTimeLastInventory(const TimePoint& time);
  static bool updateAmountInventoriesExecutedOnDay(unsigned int amount);
  static bool updateAmountAttemptsExecutedOnTimeSlot(unsigned int amount);

  static unsigned int getDateTimeLastInventory();
  static unsigned int getAmountInventoriesExecutedOnDay();
  static unsigned int getAmountAttemptsExecutedOnTimeSlot();
  static unsigned int getInventoryChangePeriod();
  static unsigned int getLastInventoryChanged();
  static unsigned int getLastScheduleInventoryID();
  static unsigned int getRudCompletoLastInventory();

  /// Writes 0 for each of these values that reads as 0: the last change, the schedule's id, the
  /// period, the last total file inventory.
  static void checkKOBDataTable();

  /// Replaces the whole table. Of several records with the same key, the first stays. After a
  /// failure the table may be empty.
  static bool ReplaceRegistredSoftware(const std::vector<Common::SoftwareRegisteredInfo>& software);
};

}  // namespace Norvik::KOB
