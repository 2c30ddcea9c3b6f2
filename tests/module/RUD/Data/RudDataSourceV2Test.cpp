#include "module/RUD/Data/RudDataSourceV2.h"

#include "module/RUD/Data/RudSentences.h"
#include "module/RUD/ScannedFiles.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;
using Common::V2::DataBaseRow;
using Common::V2::DataBaseRows;

TextList NamesOf(const DataBaseRows& rows) {
  TextList names;
  for (const auto& row : rows) names.push_back(boost::get<std::string>(row.at(2)));
  return names;
}

int Count(const std::string& table) {
  return boost::get<int>(TestDatabase::Run("select count(*) from " + table).at(0).at(0));
}

class RudDataSourceTest : public testing::Test {
 protected:
  TestDatabase database;
  LogCapture log;
};

TEST_F(RudDataSourceTest, ATransitionWritesItsStateAndItsTimeOnly) {
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusNone);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusScanning, 100, DateBegin));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusScanning);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusSaving, 200, DateModified));
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusFinished, 300, DateEnd));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusFinished);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusScanning, 400, DateBegin));
  EXPECT_FALSE(RudDataSource::SetStatus(RudStatusSaving, 1, static_cast<TimePointStatus>(9)));
  EXPECT_EQ(TestDatabase::Run("select id, id_state_harverting, date_begin, date_modified, date_end "
                              "from RUD2_CURRENT_STATUS"),
            DataBaseRows({{1, 3, 400, 200, 300}}));
}

TEST_F(RudDataSourceTest, HostileNamesComeBackWithBlanksForApostrophesOnly) {
  const std::string names[] = {"it's",       "a\"b",     "{3}", "'{1}'", "%1%",
                               "two\nlines", "\xFF\xFE", "é",   ";--",   std::string(255, 'n')};
  for (const auto& name : names) {
    auto expected = name;
    std::replace(expected.begin(), expected.end(), '\'', ' ');
    RudBuffer buffer = ScanOf({{name, -1, 5000000000}});
    ASSERT_TRUE(RudDataSource::SaveBuffer(buffer, false)) << name;
    EXPECT_EQ(
        RudDataSource::GetLastInventory(),
        DataBaseRows({{1, "/it s", expected, "EXE", 5000000000LL, -1LL, "", "", "", "", 0, ""}}))
        << name;
    EXPECT_EQ(buffer.GetBufferFile()[0].absolutePath, "/it s/" + expected + ".exe");
  }
}

TEST_F(RudDataSourceTest, ASaveReplacesItsOwnTablesOnly) {
  EXPECT_TRUE(SaveScan({{"a", 1, 1}, {"b", 1, 1}}, true));
  EXPECT_TRUE(SaveScan({{"c", 1, 1}, {"c", 2, 2}}, false));
  EXPECT_EQ(Count("RUD2_LAST_INVENTORY_TEMP"), 2);
  EXPECT_THAT(NamesOf(RudDataSource::GetLastInventory()), ElementsAre("c"));
  RudBuffer nothing(1);
  EXPECT_TRUE(RudDataSource::SaveBuffer(nothing, false));
  for (const char* table : {"RUD2_LAST_INVENTORY", "RUD2_FILE_PATH", "RUD2_FILE_EXTENSION"}) {
    EXPECT_EQ(Count(table), 0) << table;
  }
  EXPECT_EQ(TestDatabase::Run("select id, company from RUD2_FILE_COMPANY"),
            DataBaseRows({{0, ""}}));
}

TEST_F(RudDataSourceTest, TheDifferencesGoByPathAndTime) {
  EXPECT_TRUE(SaveScan(
      {{"same"}, {"size"}, {"time"}, {"old"}, {"it's"}, {"unread", -1}, {"readOnce", -1}}, false));
  const ScannedFile grown = {"size", 1000, 2}, later = {"time", 2000, 3}, read = {"readOnce", 7};
  EXPECT_TRUE(SaveScan({{"new"}, {"same"}, grown, later, {"it's"}, {"unread", -1}, read}, true));
  EXPECT_THAT(NamesOf(RudDataSource::getNewFiles()), ElementsAre("new"));
  EXPECT_THAT(NamesOf(RudDataSource::getRemoveFiles()), ElementsAre("old"));
  const auto modified = RudDataSource::getModifiedFiles();
  EXPECT_THAT(NamesOf(modified), UnorderedElementsAre("time", "readOnce"));
  for (const auto& row : modified) EXPECT_NE(row.at(5), DataBaseRow(1, 1000LL).front());
}

TEST_F(RudDataSourceTest, ADatabaseOfTheFirstSchemaKeepsItsFiles) {
  EXPECT_TRUE(SaveScan({{"main", 1, 2}}, false));
  EXPECT_TRUE(SaveScan({{"temp", 3, 4}}, true));
  const auto before = RudDataSource::GetLastInventory();
  for (const std::string table : {"RUD2_LAST_INVENTORY", "RUD2_LAST_INVENTORY_TEMP"}) {
    TestDatabase::Run("alter table " + table + " rename to newer");
    TestDatabase::Run("create table " + table +
                      "(id_path INTEGER, id_extension INTEGER, size BIGINT, last_modification "
                      "BIGINT, file_name TEXT, absolute_path TEXT UNIQUE, product_name TEXT, "
                      "version TEXT, is_executable INTEGER, id_company_name INTEGER, "
                      "file_description TEXT, id_file_state INTEGER, file_version TEXT)");
    TestDatabase::Run("insert into " + table + " select * from newer");
    TestDatabase::Run("drop table newer");
  }
  TestDatabase::Run("drop table LEDGER");
  TestDatabase::Run("PRAGMA user_version=1");
  database.Reopen();
  EXPECT_EQ(RudDataSource::GetLastInventory(), before);
  EXPECT_THAT(NamesOf(RudDataSource::getNewFiles()), ElementsAre("temp"));
  EXPECT_EQ(TestDatabase::Run("select name from sqlite_master where name like '%FORMER%'"),
            DataBaseRows());
}

TEST_F(RudDataSourceTest, EachReadFindsItsRowsByKey) {
  for (const char* sentence : {Sentences::NEW_FILES, Sentences::REMOVED_FILES,
                               Sentences::MODIFIED_FILES, Sentences::ALL_FILES}) {
    std::string plan;
    for (const auto& row : TestDatabase::Run(std::string("explain query plan ") + sentence)) {
      plan += boost::get<std::string>(row.back()) + "\n";
    }
    const bool isDifference = sentence != Sentences::ALL_FILES;
    EXPECT_THAT(plan, Not(HasSubstr("AUTOMATIC")));
    EXPECT_EQ(plan.find("(absolute_path=?)") != std::string::npos, isDifference) << plan;
    EXPECT_THAT(plan, ContainsRegex("SEARCH FP .*rowid="));
    EXPECT_EQ(std::count(plan.begin(), plan.end(), '\n'), isDifference ? 5 : 4) << plan;
  }
}

TEST_F(RudDataSourceTest, AFailureIsLoggedAndReturned) {
  EXPECT_TRUE(SaveScan({{"kept", 1, 1}}, false));
  TestDatabase::Run("drop table RUD2_FILE_PATH_TEMP");
  EXPECT_FALSE(SaveScan({{"a", 1, 1}}, true));
  TestDatabase::Run("create table RUD2_FILE_PATH_TEMP(id INTEGER PRIMARY KEY)");
  EXPECT_TRUE(SaveScan({{"a", 1, 1}}, true));
  EXPECT_EQ(Count("RUD2_LAST_INVENTORY_TEMP"), 1);
  EXPECT_THAT(RudDataSource::getNewFiles(), IsEmpty());
  EXPECT_THAT(NamesOf(RudDataSource::GetLastInventory()), ElementsAre("kept"));
  TestDatabase::Run("drop table RUD2_CURRENT_STATUS");
  EXPECT_FALSE(RudDataSource::SetStatus(RudStatusSaving, 1, DateEnd));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusNone);
  EXPECT_THAT(log.Texts(2), ElementsAre(StartsWith("Unable to saving RUD data: "),
                                        StartsWith("Unable insert File Paths Incremental - "),
                                        StartsWith("Error getNewFiles: "),
                                        StartsWith("Unable to Insert RUD Status: "),
                                        StartsWith("Unable to Get Status RUD: ")));
}

TEST_F(RudDataSourceTest, AFullDiskLosesNothingThatStands) {
  EXPECT_TRUE(SaveScan({{"kept", 1, 1}}, false));
  RudDataSource::SetStatus(RudStatusFinished, 1, DateEnd);
  {
    const FullDisk full(1);
    EXPECT_FALSE(RudDataSource::SetStatus(RudStatusSaving, 2, DateModified));
    EXPECT_FALSE(SaveScan({{"lost", 1, 1}}, false));
  }
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusFinished);
  EXPECT_THAT(NamesOf(RudDataSource::GetLastInventory()), ElementsAre("kept"));
  EXPECT_TRUE(SaveScan({{"next", 1, 1}}, false));
  EXPECT_THAT(NamesOf(RudDataSource::GetLastInventory()), ElementsAre("next"));
}

}  // namespace
}  // namespace Norvik::KOB::V2
