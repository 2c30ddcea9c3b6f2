#include "module/DataAccess/DataSource.h"

#include "module/DataAccess/KOBDataSourceV2.h"
#include "support/Json.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;
using namespace testing;
using Tests::LogCapture;
using Tests::TestDatabase;
using Newer = KOBDataSourceV2;
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
  EXPECT_EQ(Newer::getInventoryChangePeriod(), 60U);
  EXPECT_EQ(Newer::getLastInventoryChanged(), 1700000000U);
  EXPECT_EQ(Newer::getLastScheduleInventoryID(), 12U);
  // A stored zero is kept.
  Newer::updateInventoryChangedPeriod(0);
  EXPECT_THAT(KOBDataSource(database).getInventoryChangePeriod(), Pointee(0));
}

TEST(KOBDataSource, WaitsFromTheFirstSecondAfterAChangeUntilThePeriodIsOver) {
  const TestDatabase database;
  Newer::updateInventoryChangedPeriod(200);
  for (const int sinceChange : {0, 1, 200, 201}) {
    bool waits = false;
    std::int64_t waited = -1;
    // Again if a second has begun meanwhile.
    for (int attempt = 0; attempt < 10 && waited != sinceChange; ++attempt) {
      Newer::updateLastInventoryChanged(system_clock::now() - seconds(sinceChange));
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
      {Newer::ReplaceRegistredSoftware, true, "Create table error: "}};
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

}  // namespace
}  // namespace Norvik::KOB
