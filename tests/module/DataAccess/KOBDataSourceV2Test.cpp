#include "module/DataAccess/KOBDataSourceV2.h"

#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB {
namespace {

using Common::V2::DataBaseRows;
using std::chrono::milliseconds;
using std::chrono::system_clock;
using namespace testing;
using Store = KOBDataSourceV2;
using Tests::TestDatabase;

/// A named value. The log texts of its failures are in a data file.
struct Value {
  const char* key;
  std::function<bool(std::uint64_t)> update;
  std::function<unsigned int()> get;
};

/// Updates with a time that must be cut to whole seconds.
std::function<bool(std::uint64_t)> Timed(bool (*update)(const Store::TimePoint&)) {
  return [=](std::uint64_t sinceEpoch) {
    return update(system_clock::from_time_t(static_cast<std::time_t>(sinceEpoch)) +
                  milliseconds(999));
  };
}

const Value VALUES[] = {
    {"last_inventory_changed", Timed(&Store::updateLastInventoryChanged),
     &Store::getLastInventoryChanged},
    {"inventory_changed_period", &Store::updateInventoryChangedPeriod,
     &Store::getInventoryChangePeriod},
    {"scheduled_inventory_id", &Store::updateScheduleInventoryID,
     &Store::getLastScheduleInventoryID},
    {"rud_last_inventory", Timed(&Store::updateRudCompletoLastInventory),
     &Store::getRudCompletoLastInventory},
    {"datetime_last_inventory", Timed(&Store::updateDateTimeLastInventory),
     &Store::getDateTimeLastInventory},
    {"Amount_Inventories_Executed_On_Day", &Store::updateAmountInventoriesExecutedOnDay,
     &Store::getAmountInventoriesExecutedOnDay},
    {"Amount_Attempts_Executed_On_Time_Slot", &Store::updateAmountAttemptsExecutedOnTimeSlot,
     &Store::getAmountAttemptsExecutedOnTimeSlot},
};

TEST(KOBDataSourceV2, KeepsEachValueAsDecimalTextUnderItsKeyAndAllButOneIn32Bits) {
  const TestDatabase database;
  for (const auto& value : VALUES) {
    SCOPED_TRACE(value.key);
    EXPECT_EQ(value.get(), 0U);
    const bool isWide = value.key == std::string("datetime_last_inventory");
    for (const std::uint64_t number : {1700000000ULL, 4294967295ULL, 4294967301ULL, 0ULL}) {
      const auto cut = static_cast<unsigned int>(number);
      EXPECT_TRUE(value.update(number));
      EXPECT_EQ(value.get(), cut);
      EXPECT_EQ(TestDatabase::Run("select value from KOB_DATA where name='{1}'",
                                  {std::string(value.key)}),
                DataBaseRows({{std::to_string(isWide ? number : cut)}}));
    }
  }
}

TEST(KOBDataSourceV2, LogsAFailureAndReturnsFalseOrZero) {
  const TestDatabase database;
  TestDatabase::Run(
      "create trigger Refuse before insert on KOB_DATA begin select raise(abort, 'refused'); end");
  for (const auto& value : VALUES) EXPECT_FALSE(value.update(5)) << value.key;
  TestDatabase::Run("drop table KOB_DATA");
  for (const auto& value : VALUES) {
    SCOPED_TRACE(value.key);
    const Tests::LogCapture log;
    EXPECT_FALSE(value.update(5));
    EXPECT_EQ(value.get(), 0U);
    const Tests::Json& failures = Tests::DataOf("module/DataAccess/failures.json")[value.key];
    EXPECT_THAT(log.Texts(2),
                ElementsAre(StartsWith(failures[0].get<std::string>() + ": no such"),
                            StartsWith(failures[1].get<std::string>() + ": no such")));
  }
}

TEST(KOBDataSourceV2, ReadsAValueThatIsNoNumberAsZeroAndLogsThat) {
  const TestDatabase database;
  for (const char* text : {"", "x", "99999999999999999999"}) {
    TestDatabase::Run("insert or replace into KOB_DATA(name, value) values('{1}', '{2}')",
                      {std::string("scheduled_inventory_id"), std::string(text)});
    const Tests::LogCapture log;
    EXPECT_EQ(Store::getLastScheduleInventoryID(), 0U) << text;
    EXPECT_THAT(log.Texts(2), ElementsAre(StartsWith("Unable to Get scheduled_inventory_id: ")));
  }
}

TEST(KOBDataSourceV2, SeedsZerosAndLeavesWhatIsThere) {
  const TestDatabase database;
  Store::updateScheduleInventoryID(7);
  Store::checkKOBDataTable();
  const auto rows = TestDatabase::Run(
      "select group_concat(name || '=' || value) from (select * from KOB_DATA order by id)");
  EXPECT_EQ(rows, DataBaseRows({{std::string("scheduled_inventory_id=7,last_inventory_changed=0,"
                                             "inventory_changed_period=0,rud_last_inventory=0")}}));
}

}  // namespace
}  // namespace Norvik::KOB
