#include "module/DataAccess/DataSource.h"
#include "module/DataAccess/KOBDataSourceV2.h"
#include "support/Json.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Common::V2::DataBaseRows;
using Store = KOBDataSourceV2;
using SoftwareList = std::vector<Common::SoftwareRegisteredInfo>;

TEST(KOBDataSource, SharesItsValuesWithTheNewerStore) {
  const TestDatabase database;
  KOBDataSource store(database);
  EXPECT_THAT(store.getInventoryChangePeriod(), Pointee(3600));
  EXPECT_THAT(store.getLastInventoryChanged(), Pointee(KOBDataSource::TimePoint()));
  EXPECT_THAT(store.getLastScheduleInventoryID(), Pointee(0));
  EXPECT_TRUE(store.updateInventoryChangedPeriod(60));
  EXPECT_TRUE(store.updateLastInventoryChanged(system_clock::from_time_t(1700000000)));
  EXPECT_TRUE(store.updateScheduleInventoryID(12));
  EXPECT_EQ(Store::getInventoryChangePeriod(), 60U);
  EXPECT_EQ(Store::getLastInventoryChanged(), 1700000000U);
  EXPECT_EQ(Store::getLastScheduleInventoryID(), 12U);
  // A stored zero is kept.
  Store::updateInventoryChangedPeriod(0);
  EXPECT_THAT(KOBDataSource(database).getInventoryChangePeriod(), Pointee(0));
}

TEST(KOBDataSource, WaitsFromTheFirstSecondAfterAChangeUntilThePeriodIsOver) {
  const TestDatabase database;
  Store::updateInventoryChangedPeriod(200);
  for (const int sinceChange : {0, 1, 200, 201}) {
    bool waits = false;
    std::int64_t waited = -1;
    // Again if a second has begun meanwhile.
    for (int attempt = 0; attempt < 10 && waited != sinceChange; ++attempt) {
      Store::updateLastInventoryChanged(system_clock::now() - seconds(sinceChange));
      const KOBDataSource store(database);
      waits = store.checkWaitingPeriod();
      waited = store.waitingTime();
    }
    EXPECT_EQ(waited, sinceChange);
    EXPECT_EQ(waits, sinceChange == 1 || sinceChange == 200) << sinceChange;
  }
}

TEST(KOBDataSource, ReturnsNullFalseOrNothingWithoutItsTablesOrItsDatabase) {
  const LogCapture log;
  TestDatabase database;
  KOBDataSource store(database);
  EXPECT_EQ(store.GetRudStatus(), "");
  TestDatabase::Run("insert into RUD_STATE(id, state_name) values(1, 'Scanning')");
  EXPECT_EQ(store.GetRudStatus(), "Scanning");
  TestDatabase::Run("alter table RUD_STATE drop column state_name");
  TestDatabase::Run("drop table KOB_DATA");
  for (const char* missing : {"tables", "database"}) {
    SCOPED_TRACE(missing);
    EXPECT_EQ(store.GetRudStatus(), "");
    EXPECT_EQ(store.getInventoryChangePeriod(), nullptr);
    EXPECT_EQ(store.getLastInventoryChanged(), nullptr);
    EXPECT_EQ(store.getLastScheduleInventoryID(), nullptr);
    EXPECT_FALSE(store.updateScheduleInventoryID(1));
    EXPECT_FALSE(KOBDataSource(database).checkWaitingPeriod());
    database.Close();
  }
  EXPECT_FALSE(store.ReplaceRegistredSoftware({}));
}

Common::SoftwareRegisteredInfo Editor(const std::string& version) {
  Common::SoftwareRegisteredInfo software(tests::ParseJson(R"({"isPatch": true,
      "name": "O'Editor", "uninstallCommand": "remove 'it'", "installDate": 1700000000000,
      "publisher": "Maker", "sizeBytes": 5000000000, "productCode": "{1}", "source": "store",
      "location": "/Applications"})"));
  software.version = version;
  return software;
}

TEST(RegisteredSoftware, IsReplacedInOneBatchByEitherStore) {
  // Unlike the newer store, the older one refuses a duplicate and keeps the previous rows.
  const struct {
    std::function<bool(const SoftwareList&)> replace;
    bool takesDuplicates;
    const char* failure;
  } stores[] = {
      {[](const SoftwareList& list) { return KOBDataSource({}).ReplaceRegistredSoftware(list); },
       false, "Error Replace Registered Software: "},
      {Store::ReplaceRegistredSoftware, true, "Create table error: "}};
  for (const auto& store : stores) {
    SCOPED_TRACE(store.failure);
    const LogCapture log;
    const TestDatabase database;
    const auto rows = [] {
      return TestDatabase::Run(
          "select is_patch, name, uninstall_str, install_date, version, publisher, size, "
          "product_id, source, location from KOB_REGISTERED_SOFTWARE order by version");
    };
    EXPECT_TRUE(store.replace({Editor("0")}));
    EXPECT_TRUE(store.replace({Editor("2"), Editor("1")}));
    ASSERT_THAT(rows(), SizeIs(2));
    EXPECT_EQ(rows()[0],
              Common::V2::DataBaseRow({1, std::string("O'Editor"), std::string("remove 'it'"),
                                       1700000000, std::string("1"), std::string("Maker"),
                                       5000000000LL, std::string("{1}"), std::string("store"),
                                       std::string("/Applications")}));
    EXPECT_EQ(store.replace({Editor("3"), Editor("3")}), store.takesDuplicates);
    EXPECT_THAT(rows(), SizeIs(store.takesDuplicates ? 1 : 2));
    TestDatabase::Run("drop table KOB_REGISTERED_SOFTWARE");
    EXPECT_FALSE(store.replace({}));
    EXPECT_EQ(log.Texts(2).back().rfind(store.failure, 0), 0U);
  }
}

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
    const LogCapture log;
    EXPECT_FALSE(value.update(5));
    EXPECT_EQ(value.get(), 0U);
    const Json& failures = DataOf("module/DataAccess/failures.json")[value.key];
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
    const LogCapture log;
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
