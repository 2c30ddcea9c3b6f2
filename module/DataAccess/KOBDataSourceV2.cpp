#include "module/DataAccess/KOBDataSourceV2.h"

#include <boost/format.hpp>
#include <exception>
#include <string>

#include "common/database/DataBase.h"
#include "common/log/Logger.h"
#include "module/DataAccess/RegisteredSoftwareRow.h"

namespace Norvik::KOB {
namespace {

using std::chrono::duration_cast;
using std::chrono::seconds;
using std::chrono::system_clock;

struct NamedValue {
  const char* key;
  const char* insertVerb;
  const char* updateFailure;
  const char* getFailure;
};

constexpr NamedValue LAST_INVENTORY_CHANGED{"last_inventory_changed", "INSERT OR IGNORE",
                                            "Unable to Insert last_inventory_changed: %1%",
                                            "Unable to Get last_inventory_changed: %1%"};
constexpr NamedValue CHANGED_PERIOD{"inventory_changed_period", "INSERT OR IGNORE",
                                    "Unable to Insert inventory_changed_period: %1%",
                                    "Unable to Get inventory_changed_period: %1%"};
constexpr NamedValue SCHEDULED_INVENTORY_ID{"scheduled_inventory_id", "INSERT OR IGNORE",
                                            "Unable to Insert scheduled_inventory_id: %1%",
                                            "Unable to Get scheduled_inventory_id: %1%"};
constexpr NamedValue RUD_LAST_INVENTORY{"rud_last_inventory", "INSERT OR IGNORE",
                                        "Unable to Insert rud_last_inventory: %1%",
                                        "Unable to Get rud_last_inventory: %1%"};
constexpr NamedValue DATE_TIME_LAST_INVENTORY{"datetime_last_inventory", "INSERT",
                                              "Unable to update DateTimeLastInventory KOB: %1%",
                                              "Unable to get DateTimeLastInventory KOB: %1%"};
constexpr NamedValue AMOUNT_INVENTORIES{"Amount_Inventories_Executed_On_Day", "INSERT",
                                        "Unable to update Amount_Inventories_Executed_On_Day: %1%",
                                        "Unable to get AmountInventoriesExecutedOnDay KOB: %1%"};
constexpr NamedValue AMOUNT_ATTEMPTS{
    "Amount_Attempts_Executed_On_Time_Slot", "INSERT",
    "Unable to update Amount_Attempts_Executed_On_Time_Slot: %1%",
    "Unable to get Amount_Attempts_Executed_On_Time_Slot KOB: %1%"};

std::string SelectText(const char* column, const char* key) {
  return std::string("select ") + column + " from KOB_DATA WHERE name='" + key + "'";
}

std::string UpdateText(const NamedValue& named) {
  return std::string("UPDATE KOB_DATA SET value='{1}' WHERE name='") + named.key + "'";
}

std::string InsertText(const NamedValue& named) {
  return std::string(named.insertVerb) + " INTO KOB_DATA(name,value) VALUES('" + named.key +
         "','{1}') ";
}

bool Update(const NamedValue& named, const std::string& value) {
  try {
    Common::V2::DataBase dataBase;
    const bool exists = !dataBase.ExecuteSentence(SelectText("id", named.key), {}).empty();
    dataBase.ExecuteSentence(exists ? UpdateText(named) : InsertText(named), {value});
    dataBase.Commit();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(named.updateFailure) % error.what());
    return false;
  }
}

bool Update(const NamedValue& named, unsigned int value) {
  return Update(named, std::to_string(value));
}

unsigned int Get(const NamedValue& named) {
  try {
    Common::V2::DataBase dataBase;
    const auto rows = dataBase.ExecuteSentence(SelectText("value", named.key), {});
    if (rows.empty()) return 0;
    return static_cast<unsigned int>(std::stoll(boost::get<std::string>(rows.at(0).at(0))));
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(named.getFailure) % error.what());
    return 0;
  }
}

long long EpochSecondsOf(const KOBDataSourceV2::TimePoint& time) {
  return duration_cast<seconds>(time.time_since_epoch()).count();
}

// Deliberately cut to 32 bits: readers of the table expect that of all keys but one.
unsigned int EpochSeconds32(const KOBDataSourceV2::TimePoint& time) {
  return static_cast<unsigned int>(EpochSecondsOf(time));
}

constexpr char INSERT_REGISTERED_SOFTWARE[] =
    "INSERT OR IGNORE INTO KOB_REGISTERED_SOFTWARE(is_patch,name,uninstall_str,install_date,"
    "version,publisher,size,product_id,source,location) "
    "VALUES({1},'{2}','{3}','{4}','{5}','{6}',{7},'{8}','{9}','{10}')";

}  // namespace

bool KOBDataSourceV2::updateLastInventoryChanged(const TimePoint& time) {
  return Update(LAST_INVENTORY_CHANGED, EpochSeconds32(time));
}

bool KOBDataSourceV2::updateInventoryChangedPeriod(const unsigned int& seconds) {
  return Update(CHANGED_PERIOD, seconds);
}

bool KOBDataSourceV2::updateScheduleInventoryID(const unsigned int& id) {
  return Update(SCHEDULED_INVENTORY_ID, id);
}

bool KOBDataSourceV2::updateRudCompletoLastInventory(const TimePoint& time) {
  return Update(RUD_LAST_INVENTORY, EpochSeconds32(time));
}

bool KOBDataSourceV2::updateDateTimeLastInventory(const TimePoint& time) {
  return Update(DATE_TIME_LAST_INVENTORY, std::to_string(EpochSecondsOf(time)));
}

bool KOBDataSourceV2::updateAmountInventoriesExecutedOnDay(unsigned int amount) {
  return Update(AMOUNT_INVENTORIES, amount);
}

bool KOBDataSourceV2::updateAmountAttemptsExecutedOnTimeSlot(unsigned int amount) {
  return Update(AMOUNT_ATTEMPTS, amount);
}

unsigned int KOBDataSourceV2::getDateTimeLastInventory() { return Get(DATE_TIME_LAST_INVENTORY); }

unsigned int KOBDataSourceV2::getAmountInventoriesExecutedOnDay() {
  return Get(AMOUNT_INVENTORIES);
}

unsigned int KOBDataSourceV2::getAmountAttemptsExecutedOnTimeSlot() { return Get(AMOUNT_ATTEMPTS); }

unsigned int KOBDataSourceV2::getInventoryChangePeriod() { return Get(CHANGED_PERIOD); }

unsigned int KOBDataSourceV2::getLastInventoryChanged() { return Get(LAST_INVENTORY_CHANGED); }

unsigned int KOBDataSourceV2::getLastScheduleInventoryID() { return Get(SCHEDULED_INVENTORY_ID); }

unsigned int KOBDataSourceV2::getRudCompletoLastInventory() { return Get(RUD_LAST_INVENTORY); }

// Deliberately zeros, also for the period: KOBDataSource writes the default of an hour.
void KOBDataSourceV2::checkKOBDataTable() {
  if (getLastInventoryChanged() == 0) updateLastInventoryChanged(TimePoint());
  if (getLastScheduleInventoryID() == 0) updateScheduleInventoryID(0);
  if (getInventoryChangePeriod() == 0) updateInventoryChangedPeriod(0);
  if (getRudCompletoLastInventory() == 0) updateRudCompletoLastInventory(TimePoint());
}

bool KOBDataSourceV2::ReplaceRegistredSoftware(
    const std::vector<Common::SoftwareRegisteredInfo>& software) {
  try {
    Common::V2::DataBase::ClearTable("KOB_REGISTERED_SOFTWARE");
    Common::V2::DataBase dataBase;
    const std::string insert = INSERT_REGISTERED_SOFTWARE;
    for (const auto& program : software) {
      dataBase.ExecuteSentence(insert, RegisteredSoftwareRow(program));
    }
    dataBase.Commit();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Create table error: %1%") % error.what());
    return false;
  }
}

}  // namespace Norvik::KOB
