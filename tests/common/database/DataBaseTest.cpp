#include "common/database/DataBase.h"

#include <gmock/gmock.h>

#include <boost/optional/optional_io.hpp>
#include <limits>
#include <stdexcept>
#include <thread>

#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

using namespace testing;
using V2::DataBase;
using V2::DataBaseRow;
using V2::DataBaseRows;
using V2::DataBaseValue;
using UnsignedLimits = std::numeric_limits<unsigned long long>;

DataBaseValue Text(const std::string& text) { return text; }

void Insert(DataBase& dataBase, const std::string& name, const std::string& value) {
  dataBase.ExecuteSentence("insert into DATA(name, value) values('{1}', '{2}')", {name, value});
}

class ExecuteSentence : public Test, protected Tests::TestDatabase {
 protected:
  using TestDatabase::Run;

  static DataBaseRow OneRow(const std::string& sentence,
                            const std::vector<DataBaseValue>& values = {}) {
    const DataBaseRows rows = DataBase().ExecuteSentence(sentence, values);
    EXPECT_EQ(rows.size(), 1U) << sentence;
    return rows.empty() ? DataBaseRow{} : rows.front();
  }
  /// Rows of the general table that others see.
  static int Committed() { return boost::get<int>(OneRow("select count(*) from DATA").at(0)); }
};

TEST_F(ExecuteSentence, GivesEveryTextBackAsItWasBound) {
  const std::string texts[] = {"",
                               "plain",
                               "it's",
                               "'; drop table KOB_DATA; --",
                               "{1} {2} '{3}' %1%",
                               "\"quoted\" \\ back",
                               std::string("with\0null", 9),
                               "\u00F1and\u00FA \u65E5 \U0001F600",
                               "not UTF-8: \xFF\xC3",
                               std::string(100000, 'x')};
  for (const auto& text : texts) {
    Run("delete from KOB_DATA");
    Run("insert into KOB_DATA(name, value) values('{1}', {2})", {text, text});
    EXPECT_EQ(OneRow("select name, value from KOB_DATA where name='{1}' and value=%1%", {text}),
              (DataBaseRow{Text(text), Text(text)}));
  }
}

TEST_F(ExecuteSentence, BindsAPlaceholderInQuotesAsText) {
  EXPECT_EQ(
      OneRow("select typeof('{1}'), '{1}', typeof({1}), '{2}', '{3}', '{4}', typeof('{5}'), '{5}'",
             {-5, UnsignedLimits::max(), 0.1, 4000000000U, 7L}),
      (DataBaseRow{Text("text"), Text("-5"), Text("integer"), Text("18446744073709551615"),
                   Text("0.10000000000000001"), Text("4000000000"), Text("text"), Text("7")}));
}

TEST_F(ExecuteSentence, KeepsNumbersOfEveryKind) {
  Run("create table T(small INTEGER, big BIGINT, number REAL)");
  constexpr auto Least = std::numeric_limits<long long>::min();
  const std::pair<DataBaseValue, long long> cases[] = {
      {-7, -7},       {4000000000U, 4000000000LL},
      {Least, Least}, {UnsignedLimits::max(), -1},  // the same bits
      {-1L, -1},      {Text("12"), 12}};
  for (const auto& [bound, read] : cases) {
    Run("delete from T");
    Run("insert into T(small, big, number) values({1}, {1}, {2})", {bound, 2.5});
    EXPECT_EQ(OneRow("select small, big, number from T"),
              (DataBaseRow{static_cast<int>(read), read, 2.5}));
  }
}

TEST_F(ExecuteSentence, GivesCellsTheTypeOfTheirColumn) {
  Run("create table T(a INTEGER, b BIGINT, c TEXT, d REAL, e VARCHAR(10), f UNSIGNED BIG INT, g)");
  Run("insert into T values(1, 2, 3, 4, 5, 6, 7)");
  Run("insert into T values(null, null, null, null, null, null, null)");
  EXPECT_EQ(Run("select a, b, c, d, e, f, g from T order by rowid"),
            (DataBaseRows{{1, 2LL, Text("3"), 4.0, Text("5"), 6LL, 7},
                          {0, 0LL, Text(""), 0.0, Text(""), 0LL, Text("")}}));
  EXPECT_EQ(OneRow("select max(b), count(*), 5000000000, 1.5, 'x', null from T"),
            (DataBaseRow{2, 2, 5000000000LL, 1.5, Text("x"), Text("")}));
}

TEST_F(ExecuteSentence, GivesTheReadersOfTheFileInventoryTheirTypes) {
  Run("insert into RUD2_LAST_INVENTORY(id_path, size, last_modification, file_name, absolute_path, "
      "is_executable) values({1}, {2}, {3}, '{4}', '{5}', {6})",
      {3U, 5000000000ULL, -1LL, Text("ls"), Text("/bin/ls"), 1});
  EXPECT_EQ(OneRow("select size, last_modification, is_executable, file_version, file_name from "
                   "RUD2_LAST_INVENTORY"),
            (DataBaseRow{5000000000LL, -1LL, 1, Text(""), Text("ls")}));
}

TEST_F(ExecuteSentence, LetsTheLastDriveOfAPathReplaceTheOneBefore) {
  for (const char* unit : {"E:", "F:"}) {
    Run("insert into KOB_NETWORK_DRIVES( id, Unit, Path, Server) values(%1%, '%2%', '%3%', '%4%')",
        {0xFFFFFFFF00000007ULL, Text(unit), Text("//a/o'b"), Text("a")});
  }
  // The reader of the table wants an int: the low half of the id.
  EXPECT_EQ(OneRow("select id, Unit, Path, Server from KOB_NETWORK_DRIVES"),
            (DataBaseRow{7, Text("F:"), Text("//a/o'b"), Text("a")}));
}

TEST_F(ExecuteSentence, SaysWhatIsWrongWithAStatement) {
  const std::pair<std::string, const char*> cases[] = {
      {"select value from MISSING", "no such table: MISSING"},
      {"select {3}", "placeholder {3} has no value, 1 given"},
      {"select '{2}'", "placeholder {2} has no value, 1 given"},
      {"select {0}", "counted from 1"},
      {"delete from DATA; delete from KOB_DATA", "more than one statement"},
      {"", "no statement"},
      {"select 'open {1}", "unrecognized token"}};
  for (const auto& entry : cases) {
    EXPECT_THAT([&] { Run(entry.first, {1}); },
                ThrowsMessage<std::exception>(HasSubstr(entry.second)));
  }
}

TEST_F(ExecuteSentence, GoesOnAfterAFailedStatement) {
  DataBase dataBase;
  Insert(dataBase, "a", "1");
  EXPECT_THROW(Insert(dataBase, "a", "2"), std::exception);
  EXPECT_THROW(dataBase.ExecuteSentence("insert into DATA(name) values('{1}')"), std::exception);
  Insert(dataBase, "b", "3");
  dataBase.Commit();
  EXPECT_EQ(DataBase::GetDataTable("a"), 1);
  EXPECT_EQ(DataBase::GetDataTable("b"), 3);
}

TEST_F(ExecuteSentence, ReadsAChangedTableWithAStatementPreparedBefore) {
  Run("create table T(a INTEGER)");
  Run("insert into T values(1)");
  DataBase reader;
  EXPECT_EQ(reader.ExecuteSentence("select * from T"), DataBaseRows({{1}}));
  Run("alter table T add column b TEXT default 'x'");
  EXPECT_EQ(reader.ExecuteSentence("select * from T"), DataBaseRows({{1, Text("x")}}));
}

TEST_F(ExecuteSentence, HidesWhatIsNotCommittedAndRollsItBack) {
  {
    DataBase dataBase;
    Insert(dataBase, "a", "1");
    EXPECT_EQ(dataBase.ExecuteSentence("select * from DATA").size(), 1U);
    EXPECT_EQ(Committed(), 0);
    dataBase.Commit();
    EXPECT_EQ(Committed(), 1);
    Insert(dataBase, "b", "2");
  }
  EXPECT_EQ(Committed(), 1);
  // The connection went back to the pool: its next user inherits no transaction.
  DataBase().Commit();
  EXPECT_EQ(Committed(), 1);
}

TEST_F(ExecuteSentence, CommitsNothingOfABatchThatTheDatabaseGaveUp) {
  DataBase dataBase;
  Insert(dataBase, "first", "1");
  const auto pages = dataBase.ExecuteSentence("PRAGMA page_count").at(0).at(0);
  dataBase.ExecuteSentence("PRAGMA max_page_count=" + std::to_string(boost::get<int>(pages) + 4));
  EXPECT_THAT([&] { Insert(dataBase, "large", std::string(160000, 'x')); },
              ThrowsMessage<std::exception>(HasSubstr("full")));
  EXPECT_THAT([&] { Insert(dataBase, "small", "2"); },
              ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  EXPECT_THAT([&] { dataBase.Commit(); }, ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  dataBase.ExecuteSentence("PRAGMA max_page_count=1073741823");
  EXPECT_EQ(Committed(), 0);
}

TEST_F(ExecuteSentence, LetsThreadsWriteSideBySide) {
  const auto write = [](int thread) {
    try {
      for (int batch = 0; batch < 10; ++batch) {
        DataBase dataBase;
        dataBase.ExecuteSentence("select count(*) from DATA");
        Insert(dataBase, std::to_string(thread) + "/" + std::to_string(batch), "1");
        if (batch % 2 == 0) dataBase.Commit();
      }
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
  };
  std::vector<std::thread> threads;
  for (int thread = 0; thread < 6; ++thread) threads.emplace_back(write, thread);
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(Committed(), 30);
}

TEST_F(ExecuteSentence, NeedsAnOpenDatabaseToBeginABatchAndNoneToFinishIt) {
  {
    DataBase dataBase;
    Insert(dataBase, "a", "1");
    Close();
    dataBase.Commit();
  }
  EXPECT_THAT([] { DataBase dataBase; },
              ThrowsMessage<std::runtime_error>(HasSubstr("no agent database")));
  Open();
  EXPECT_EQ(DataBase::GetDataTable("a"), 1);
}

TEST_F(ExecuteSentence, OffersTheTableCallsWithoutAnObject) {
  EXPECT_TRUE(DataBase::ExistTable("RUD2_CURRENT_STATUS"));
  EXPECT_FALSE(DataBase::ExistTable("MISSING"));
  EXPECT_FALSE(DataBase::ExistTable("x' or '1'='1"));

  EXPECT_TRUE(DataBase::IsTableEmpty("DATA"));
  DataBase::SetDataTable("k", 1);
  EXPECT_FALSE(DataBase::IsTableEmpty("DATA"));
  DataBase::ClearTable("DATA");
  EXPECT_TRUE(DataBase::IsTableEmpty("DATA"));

  for (const char* name : {"MISSING", "", "DATA; drop table DATA", "a\"b"}) {
    EXPECT_THROW(DataBase::IsTableEmpty(name), std::exception) << name;
    EXPECT_THROW(DataBase::ClearTable(name), std::exception) << name;
  }
}

TEST_F(ExecuteSentence, KeepsIntegersAndTextsUnderKeysOfTheGeneralTable) {
  EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), 0);
  EXPECT_EQ(DataBase::GetOptionalStringDataTable("KOB_INVENTORY"), boost::none);
  for (const int value : {5, -2147483647 - 1}) {
    DataBase::SetDataTable("KOB_INVENTORY", value);
    EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), value);
    EXPECT_EQ(DataBase::GetOptionalStringDataTable("KOB_INVENTORY"), std::to_string(value));
  }
  Run("update DATA set value='12 apples'");
  EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), 0);
}

}  // namespace
}  // namespace Norvik::Common
