#include "module/DataAccess/DataSource.h"

#include <gmock/gmock.h>

#include "module/DataAccess/KOBDataSourceV2.h"
#include "support/LogCapture.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB {
namespace {

using Common::V2::DataBase;
using std::chrono::seconds;
using std::chrono::system_clock;
using namespace testing;
using Tests::TestDatabase;

TEST(KOBDataSource, GivesAFreshDatabaseItsDefaults) {
  const TestDatabase database;
  const KOBDataSource store(database);
  EXPECT_THAT(store.getInventoryChangePeriod(), Pointee(3600));
  EXPECT_THAT(store.getLastInventoryChanged(), Pointee(KOBDataSource::TimePoint()));
  EXPECT_THAT(store.getLastScheduleInventoryID(), Pointee(0));
  EXPECT_EQ(KOBDataSourceV2::getInventoryChangePeriod(), 3600U);
}

TEST(KOBDataSource, LeavesWhatTheNewerStoreHasWritten) {
  const TestDatabase database;
  KOBDataSourceV2::checkKOBDataTable();  // zeros, the period too
  KOBDataSourceV2::updateScheduleInventoryID(9);
  const KOBDataSource store(database);
  EXPECT_THAT(store.getInventoryChangePeriod(), Pointee(0));
  EXPECT_THAT(store.getLastScheduleInventoryID(), Pointee(9));
}

TEST(KOBDataSource, WritesWhatTheNewerStoreReads) {
  const TestDatabase database;
  KOBDataSource store(database);
  EXPECT_TRUE(store.updateInventoryChangedPeriod(60));
  EXPECT_TRUE(store.updateLastInventoryChanged(system_clock::from_time_t(1700000000)));
  EXPECT_TRUE(store.updateScheduleInventoryID(12));
  EXPECT_EQ(KOBDataSourceV2::getInventoryChangePeriod(), 60U);
  EXPECT_EQ(KOBDataSourceV2::getLastInventoryChanged(), 1700000000U);
  EXPECT_EQ(KOBDataSourceV2::getLastScheduleInventoryID(), 12U);
}

TEST(KOBDataSource, WaitsFromTheFirstSecondBehindAChangeUntilThePeriodIsOver) {
  const TestDatabase database;
  for (const int sinceChange : {-50, 50, 300}) {
    KOBDataSourceV2::updateInventoryChangedPeriod(200);
    KOBDataSourceV2::updateLastInventoryChanged(system_clock::now() - seconds(sinceChange));
    const KOBDataSource store(database);
    EXPECT_EQ(store.checkWaitingPeriod(), sinceChange == 50) << sinceChange;
    EXPECT_NEAR(static_cast<double>(store.waitingTime()), sinceChange, 10.0);
  }
}

TEST(KOBDataSource, ReadsTheStateOfTheOlderFileInventory) {
  const TestDatabase database;
  KOBDataSource store(database);
  EXPECT_EQ(store.GetRudStatus(), "");
  TestDatabase::Run("insert into RUD_STATE(id, state_name) values(1, 'Scanning')");
  EXPECT_EQ(store.GetRudStatus(), "Scanning");
  TestDatabase::Run("alter table RUD_STATE drop column state_name");
  EXPECT_EQ(store.GetRudStatus(), "");
}

TEST(KOBDataSource, AnswersNullFalseOrNothingWithoutItsTablesOrItsDatabase) {
  const Tests::LogCapture log;
  TestDatabase database;
  KOBDataSource store(database);
  TestDatabase::Run("drop table KOB_DATA");
  EXPECT_EQ(store.getInventoryChangePeriod(), nullptr);
  EXPECT_EQ(store.getLastInventoryChanged(), nullptr);
  EXPECT_EQ(store.getLastScheduleInventoryID(), nullptr);
  EXPECT_FALSE(store.updateScheduleInventoryID(1));

  database.Close();
  EXPECT_EQ(store.getLastInventoryChanged(), nullptr);
  EXPECT_FALSE(store.updateLastInventoryChanged(system_clock::now()));
  EXPECT_EQ(store.GetRudStatus(), "");
  EXPECT_FALSE(store.ReplaceRegistredSoftware({}));
  EXPECT_FALSE(KOBDataSource(database).checkWaitingPeriod());
}

TEST(KOBDataSource, ReplacesTheRegisteredSoftwareInOneBatch) {
  const TestDatabase database;
  KOBDataSource store(database);
  const auto installed = [] {
    return TestDatabase::Run("select name, install_date from KOB_REGISTERED_SOFTWARE");
  };
  Common::SoftwareRegisteredInfo software;
  EXPECT_TRUE(store.ReplaceRegistredSoftware({software}));
  software.name = "O'Editor";
  software.installDate = 1700000000;
  const Tests::LogCapture log;
  EXPECT_TRUE(store.ReplaceRegistredSoftware({software}));
  EXPECT_THAT(installed(), ElementsAre(ElementsAre(std::string("O'Editor"), 1700000000)));
  EXPECT_THAT(log.Texts(7), ElementsAre(">>", "<<"));

  // Unlike the newer store this one refuses a duplicate, and the rows before are still there.
  EXPECT_FALSE(store.ReplaceRegistredSoftware({software, software}));
  EXPECT_THAT(log.Texts(2),
              ElementsAre(StartsWith("Error Replace Registered Software: UNIQUE constraint")));
  EXPECT_THAT(installed(), ElementsAre(ElementsAre(std::string("O'Editor"), 1700000000)));
}

}  // namespace
}  // namespace Norvik::KOB
