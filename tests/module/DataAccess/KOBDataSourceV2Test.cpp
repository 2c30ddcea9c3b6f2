#include "module/DataAccess/KOBDataSourceV2.h"

#include <gmock/gmock.h>

#include <functional>

#include "support/Cases.h"
#include "support/Json.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB {
namespace {

using Common::V2::DataBaseRows;
using std::chrono::milliseconds;
using std::chrono::system_clock;
using namespace testing;
using Store = KOBDataSourceV2;
using Tests::TestDatabase;

/// The texts of its failures stand in a data file.
struct Value {
  const char* key;
  std::function<bool(unsigned int)> update;
  std::function<unsigned int()> get;
};

/// An update by a time, which is to be cut to seconds.
std::function<bool(unsigned int)> Timed(bool (*update)(const Store::TimePoint&)) {
  return [=](unsigned int seconds) {
    return update(system_clock::from_time_t(seconds) + milliseconds(999));
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

DataBaseRows RowsOf(const std::string& key) {
  return TestDatabase::Run("select value from KOB_DATA where name='{1}'", {key});
}

TEST(KOBDataSourceV2, KeepsEachValueAsDecimalTextUnderItsKey) {
  const TestDatabase database;
  for (const auto& value : VALUES) {
    SCOPED_TRACE(value.key);
    EXPECT_EQ(value.get(), 0U);
    for (const unsigned int number : {1700000000U, 4294967295U, 0U}) {
      EXPECT_TRUE(value.update(number));
      EXPECT_EQ(value.get(), number);
      EXPECT_EQ(RowsOf(value.key), DataBaseRows({{std::to_string(number)}}));
    }
  }
}

TEST(KOBDataSourceV2, CutsTimesTo32BitsButForTheDateOfTheLastInventory) {
  const TestDatabase database;
  const Store::TimePoint late = system_clock::from_time_t(4294967296 + 5);
  Store::updateLastInventoryChanged(late);
  Store::updateRudCompletoLastInventory(late);
  Store::updateDateTimeLastInventory(late);
  EXPECT_EQ(RowsOf("last_inventory_changed"), DataBaseRows({{std::string("5")}}));
  EXPECT_EQ(RowsOf("rud_last_inventory"), DataBaseRows({{std::string("5")}}));
  EXPECT_EQ(RowsOf("datetime_last_inventory"), DataBaseRows({{std::string("4294967301")}}));
  EXPECT_EQ(Store::getDateTimeLastInventory(), 5U);
}

TEST(KOBDataSourceV2, LogsAFailureAndAnswersFalseOrZero) {
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

TEST(KOBDataSourceV2, ReadsAValueThatIsNoNumberAsZeroAndSaysSo) {
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

Common::SoftwareRegisteredInfo Software(const std::string& name, const std::string& version) {
  Common::SoftwareRegisteredInfo software(tests::ParseJson(R"({"isPatch": true,
      "uninstallCommand": "remove 'it'", "installDate": 1700000000000, "publisher": "Maker",
      "sizeBytes": 5000000000, "productCode": "{1}", "source": "store",
      "location": "/Applications"})"));
  software.name = name;
  software.version = version;
  return software;
}

TEST(KOBDataSourceV2, ReplacesTheRegisteredSoftwareAndPassesOverDuplicates) {
  const TestDatabase database;
  EXPECT_TRUE(Store::ReplaceRegistredSoftware({Software("Old", "1")}));
  EXPECT_TRUE(Store::ReplaceRegistredSoftware(
      {Software("O'Editor", "1"), Software("O'Editor", "2"), Software("O'Editor", "1")}));
  const auto rows = TestDatabase::Run(
      "select is_patch, name, uninstall_str, install_date, version, publisher, size, product_id, "
      "source, location from KOB_REGISTERED_SOFTWARE order by version");
  ASSERT_THAT(rows, SizeIs(2));
  EXPECT_EQ(rows[0], Common::V2::DataBaseRow(
                         {1, std::string("O'Editor"), std::string("remove 'it'"), 1700000000,
                          std::string("1"), std::string("Maker"), 5000000000LL, std::string("{1}"),
                          std::string("store"), std::string("/Applications")}));
}

TEST(KOBDataSourceV2, LogsWhyTheSoftwareCouldNotBeReplaced) {
  const TestDatabase database;
  TestDatabase::Run("drop table KOB_REGISTERED_SOFTWARE");
  const Tests::LogCapture log;
  EXPECT_FALSE(Store::ReplaceRegistredSoftware({}));
  EXPECT_THAT(log.Texts(2), ElementsAre(StartsWith("Create table error: no such table")));
}

}  // namespace
}  // namespace Norvik::KOB
