#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "common/database/AgentData.h"
#include "common/database/IDataBase.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::KOB {

/// The older access to the module's store. The constructor writes the defaults of values that are
/// missing. The operations do not throw: they return null, false or an empty text on failure.
class KOBDataSource {
 public:
  using TimePoint = std::chrono::system_clock::time_point;

  static constexpr char TABLE_NAME_KOB_DATA[] = "KOB_DATA";
  static constexpr char TABLE_NAME_REGISTRED_SW[] = "KOB_REGISTERED_SOFTWARE";
  static constexpr char TABLE_NAME_RUD_STATUS[] = "RUD_STATE";
  static constexpr char TABLE_NAME_RUD_PATH[] = "RUD_FILE_PATH";
  static constexpr char COLUMN_NAME_RUD_status[] = "state_name";
  static constexpr char COLUMN_NAME_RUD_path[] = "path";
  static constexpr char COLUMN_NAME_LAST_INVENTORY_CHANGED_INVENTORY[] = "last_inventory_changed";
  static constexpr char COLUMN_NAME_INVENTORY_CHANGED_INVENTORY_PERIOD[] =
      "inventory_changed_period";
  static constexpr char COLUMN_NAME_SCHEDULED_INVENTORY_ID[] = "scheduled_inventory_id";

  explicit KOBDataSource(std::weak_ptr<Common::IDataBase> dataBase);

  bool updateLastInventoryChanged(const TimePoint& time);
  bool updateInventoryChangedPeriod(const long long& seconds);
  bool updateScheduleInventoryID(const long long& id);

  /// Null if the key has no row.
  std::unique_ptr<std::int64_t> getInventoryChangePeriod() const;
  std::unique_ptr<TimePoint> getLastInventoryChanged() const;
  std::unique_ptr<std::int64_t> getLastScheduleInventoryID() const;

  /// Replaces the whole table, or leaves it as it was. Refuses a list with two records of the same
  /// key. False on failure, which is logged.
  bool ReplaceRegistredSoftware(const std::vector<Common::SoftwareRegisteredInfo>& software);

  /// The name of the file inventory's state in its older table; "" without one.
  std::string GetRudStatus();

  /// True from the first second after the last change until the period is over. Both values are
  /// those that the constructor read.
  bool checkWaitingPeriod() const;
  /// Seconds since the last change.
  std::int64_t waitingTime() const;

 private:
  void CheckKOBDataTable();

  std::unique_ptr<std::int64_t> changePeriod_;
  std::unique_ptr<TimePoint> lastChange_;
  std::unique_ptr<std::int64_t> lastScheduleId_;
  std::weak_ptr<Common::IDataBase> dataBase_;
  Common::AgentData data_;
};

}  // namespace Norvik::KOB
