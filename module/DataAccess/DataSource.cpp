#include "module/DataAccess/DataSource.h"

#include <boost/format.hpp>
#include <exception>

#include "common/database/DataBase.h"
#include "common/log/Logger.h"
#include "module/ActionPeriods.h"
#include "module/DataAccess/RegisteredSoftwareRow.h"

namespace Norvik::KOB {
namespace {

using std::chrono::duration_cast;
using std::chrono::seconds;
using std::chrono::system_clock;

constexpr std::int64_t INVENTORY_DEFAULT_ID = 0;

constexpr std::size_t STATE_NAME_COLUMN = 6;

constexpr char INSERT_SOFTWARE[] =
    "insert into KOB_REGISTERED_SOFTWARE(is_patch, name, uninstall_str, install_date,\n"
    "                                    version, publisher, size, product_id,\n"
    "                                    source, location)\n"
    "values({1}, '{2}', '{3}', '{4}',\n"
    "       '{5}', '{6}', {7}, '{8}',\n"
    "       '{9}', '{10}')";

// Deliberately the date as decimal text, unlike in KOBDataSourceV2: this path stores it so.
std::vector<Common::V2::DataBaseValue> RowWithDateAsText(
    const Common::SoftwareRegisteredInfo& software) {
  auto row = RegisteredSoftwareRow(software);
  row[INSTALL_DATE_COLUMN] = std::to_string(software.installDate);
  return row;
}

std::int64_t SecondsOf(const KOBDataSource::TimePoint& time) {
  return duration_cast<seconds>(time.time_since_epoch()).count();
}

// A value that cannot be read counts as absent. This path deliberately does not log it.
template <class Read>
auto NullOnError(Read read) -> decltype(read()) {
  try {
    return read();
  } catch (const std::exception&) {
    return nullptr;
  }
}

}  // namespace

KOBDataSource::KOBDataSource(std::weak_ptr<Common::IDataBase> dataBase)
    : dataBase_(dataBase), data_(dataBase, TABLE_NAME_KOB_DATA) {
  CheckKOBDataTable();
}

void KOBDataSource::CheckKOBDataTable() {
  changePeriod_ = getInventoryChangePeriod();
  if (!changePeriod_) {
    updateInventoryChangedPeriod(INVENTORY_CHANGED_PERIOD.count());
    changePeriod_ = std::make_unique<std::int64_t>(INVENTORY_CHANGED_PERIOD.count());
  }
  lastChange_ = getLastInventoryChanged();
  if (!lastChange_) {
    updateLastInventoryChanged(TimePoint());
    lastChange_ = std::make_unique<TimePoint>();
  }
  lastScheduleId_ = getLastScheduleInventoryID();
  if (!lastScheduleId_) {
    updateScheduleInventoryID(INVENTORY_DEFAULT_ID);
    lastScheduleId_ = std::make_unique<std::int64_t>(INVENTORY_DEFAULT_ID);
  }
}

bool KOBDataSource::updateLastInventoryChanged(const TimePoint& time) {
  return data_.SetDateTime(COLUMN_NAME_LAST_INVENTORY_CHANGED_INVENTORY, time);
}

bool KOBDataSource::updateInventoryChangedPeriod(const long long& seconds) {
  return data_.SetInt64(COLUMN_NAME_INVENTORY_CHANGED_INVENTORY_PERIOD, seconds);
}

bool KOBDataSource::updateScheduleInventoryID(const long long& id) {
  return data_.SetInt64(COLUMN_NAME_SCHEDULED_INVENTORY_ID, id);
}

std::unique_ptr<std::int64_t> KOBDataSource::getInventoryChangePeriod() const {
  return NullOnError(
      [&] { return data_.GetInt64(COLUMN_NAME_INVENTORY_CHANGED_INVENTORY_PERIOD); });
}

std::unique_ptr<KOBDataSource::TimePoint> KOBDataSource::getLastInventoryChanged() const {
  return NullOnError(
      [&] { return data_.GetDateTime(COLUMN_NAME_LAST_INVENTORY_CHANGED_INVENTORY); });
}

std::unique_ptr<std::int64_t> KOBDataSource::getLastScheduleInventoryID() const {
  return NullOnError([&] { return data_.GetInt64(COLUMN_NAME_SCHEDULED_INVENTORY_ID); });
}

bool KOBDataSource::ReplaceRegistredSoftware(
    const std::vector<Common::SoftwareRegisteredInfo>& software) {
  NORVIK_SCOPE();
  try {
    Common::V2::DataBase dataBase;
    dataBase.ExecuteSentence("delete from KOB_REGISTERED_SOFTWARE");
    const std::string insert = INSERT_SOFTWARE;
    for (const auto& program : software) {
      dataBase.ExecuteSentence(insert, RowWithDateAsText(program));
    }
    dataBase.Commit();
    return true;
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Error Replace Registered Software: %1%") % error.what());
    return false;
  }
}

std::string KOBDataSource::GetRudStatus() {
  try {
    const std::shared_ptr<Common::IDataBase> dataBase(dataBase_);
    const auto table = dataBase->GetTable(TABLE_NAME_RUD_STATUS, 0, 0, 0);
    return table ? table->rows.at(0).at(STATE_NAME_COLUMN) : std::string();
  } catch (const std::exception&) {
    return {};  // counts as absent, deliberately without a log entry
  }
}

bool KOBDataSource::checkWaitingPeriod() const {
  const std::int64_t waited = waitingTime();
  return waited >= 1 && waited <= *changePeriod_;
}

std::int64_t KOBDataSource::waitingTime() const {
  return SecondsOf(system_clock::now()) - SecondsOf(*lastChange_);
}

}  // namespace Norvik::KOB
