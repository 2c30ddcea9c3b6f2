#include "common/database/DataBase.h"

#include <gmock/gmock.h>

#include <atomic>
#include <boost/optional/optional_io.hpp>
#include <limits>
#include <stdexcept>
#include <thread>

#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::ThrowsMessage;
using V2::DataBase;
using V2::DataBaseRow;
using V2::DataBaseRows;
using V2::DataBaseValue;

class ExecuteSentence : public testing::Test {
 protected:
  DataBaseRow OneRow(const std::string& sentence, const std::vector<DataBaseValue>& values = {}) {
    const DataBaseRows rows = DataBase().ExecuteSentence(sentence, values);
    EXPECT_EQ(rows.size(), 1U) << sentence;
    return rows.empty() ? DataBaseRow{} : rows.front();
  }
  int Count(const std::string& table) {
    return boost::get<int>(OneRow("select count(*) from " + table).at(0));
  }
  void MakeTable(const std::string& columns) {
    Tests::TestDatabase::Run("create table T(" + columns + ")");
  }

  Tests::TestDatabase database_;
};

DataBaseValue Text(const std::string& text) { return text; }

TEST_F(ExecuteSentence, GivesEveryTextBackAsItWasBound) {
  const std::string texts[] = {
      "",
      "plain",
      "it's",
      "'; drop table KOB_DATA; --",
      "{1} {2} '{3}' %1%",
      "\"quoted\" \\ back",
      std::string("with\0null", 9),
      "\u00F1and\u00FA \u65E5 \U0001F600",
      "not UTF-8: \xFF\xC3",
      std::string(100000, 'x'),
  };
  for (const auto& text : texts) {
    Tests::TestDatabase::Run("delete from KOB_DATA");
    Tests::TestDatabase::Run("insert into KOB_DATA(name, value) values('{1}', {2})", {text, text});
    EXPECT_THAT(OneRow("select name, value from KOB_DATA where name='{1}' and value=%1%", {text}),
                ElementsAre(Text(text), Text(text)));
  }
}

TEST_F(ExecuteSentence, BindsAPlaceholderInQuotesAsText) {
  const auto row =
      OneRow("select typeof('{1}'), '{1}', typeof({1}), '{2}', '{3}', '{4}', typeof('{5}'), '{5}'",
             {-5, std::numeric_limits<unsigned long long>::max(), 0.1, 4000000000U, 7L});
  EXPECT_THAT(
      row, ElementsAre(Text("text"), Text("-5"), Text("integer"), Text("18446744073709551615"),
                       Text("0.10000000000000001"), Text("4000000000"), Text("text"), Text("7")));
}

TEST_F(ExecuteSentence, KeepsNumbersOfEveryKind) {
  MakeTable("small INTEGER, big BIGINT, number REAL");
  struct Case {
    DataBaseValue bound;
    long long read;
  };
  const Case cases[] = {
      {-7, -7},
      {4000000000U, 4000000000LL},
      {std::numeric_limits<long long>::min(), std::numeric_limits<long long>::min()},
      {std::numeric_limits<unsigned long long>::max(), -1},  // the same bits
      {-1L, -1},
      {Text("12"), 12},
  };
  for (const auto& [bound, read] : cases) {
    Tests::TestDatabase::Run("delete from T");
    Tests::TestDatabase::Run("insert into T(small, big, number) values({1}, {1}, {2})",
                             {bound, 2.5});
    EXPECT_THAT(OneRow("select small, big, number from T"),
                ElementsAre(DataBaseValue(static_cast<int>(read)), DataBaseValue(read),
                            DataBaseValue(2.5)));
  }
}

TEST_F(ExecuteSentence, GivesCellsTheTypeOfTheirColumn) {
  MakeTable("a INTEGER, b BIGINT, c TEXT, d REAL, e VARCHAR(10), f UNSIGNED BIG INT, g");
  Tests::TestDatabase::Run("insert into T values(1, 2, 3, 4, 5, 6, 7)");
  Tests::TestDatabase::Run("insert into T values(null, null, null, null, null, null, null)");

  EXPECT_THAT(
      DataBase().ExecuteSentence("select a, b, c, d, e, f, g from T order by rowid"),
      ElementsAre(ElementsAre(DataBaseValue(1), DataBaseValue(2LL), Text("3"), DataBaseValue(4.0),
                              Text("5"), DataBaseValue(6LL), DataBaseValue(7)),
                  ElementsAre(DataBaseValue(0), DataBaseValue(0LL), Text(""), DataBaseValue(0.0),
                              Text(""), DataBaseValue(0LL), Text(""))));
  EXPECT_THAT(OneRow("select max(b), count(*), 5000000000, 1.5, 'x', null from T"),
              ElementsAre(DataBaseValue(2), DataBaseValue(2), DataBaseValue(5000000000LL),
                          DataBaseValue(1.5), Text("x"), Text("")));
}

TEST_F(ExecuteSentence, GivesTheReadersOfTheFileInventoryTheirTypes) {
  Tests::TestDatabase::Run("insert into RUD2_FILE_PATH(id, path) values({1}, '{2}')",
                           {3U, Text("/bin")});
  Tests::TestDatabase::Run(
      "insert into RUD2_LAST_INVENTORY(id_path, size, last_modification, file_name, absolute_path, "
      "is_executable) values({1}, {2}, {3}, '{4}', '{5}', {6})",
      {3U, 5000000000ULL, -1LL, Text("ls"), Text("/bin/ls"), 1});
  EXPECT_THAT(OneRow("select FP.path, LI.size, LI.last_modification, LI.is_executable, "
                     "LI.file_version from RUD2_LAST_INVENTORY LI, RUD2_FILE_PATH FP "
                     "where LI.id_path = FP.id"),
              ElementsAre(Text("/bin"), DataBaseValue(5000000000LL), DataBaseValue(-1LL),
                          DataBaseValue(1), Text("")));
}

TEST_F(ExecuteSentence, SaysWhatIsWrongWithAStatement) {
  struct Case {
    const char* sentence;
    const char* message;
  };
  const Case cases[] = {
      {"select value from MISSING", "no such table: MISSING"},
      {"select {3}", "placeholder {3} has no value, 1 given"},
      {"select '{2}'", "placeholder {2} has no value, 1 given"},
      {"select {0}", "counted from 1"},
      {"delete from DATA; delete from KOB_DATA", "more than one statement"},
      {"", "no statement"},
      {"select 'open {1}", "unrecognized token"},
  };
  for (const auto& [sentence, message] : cases) {
    const std::string text = sentence;
    EXPECT_THAT([&text] { DataBase().ExecuteSentence(text, {1}); },
                ThrowsMessage<std::exception>(HasSubstr(message)))
        << sentence;
  }
}

TEST_F(ExecuteSentence, GoesOnAfterAFailedStatement) {
  DataBase dataBase;
  const std::string insert = "insert into DATA(name, value) values('{1}', '{2}')";
  dataBase.ExecuteSentence(insert, {Text("a"), Text("1")});
  EXPECT_THROW(dataBase.ExecuteSentence(insert, {Text("a"), Text("2")}), std::exception);
  EXPECT_THROW(dataBase.ExecuteSentence(insert, {Text("b")}), std::exception);
  dataBase.ExecuteSentence(insert, {Text("b"), Text("3")});
  dataBase.Commit();
  EXPECT_EQ(DataBase::GetDataTable("a"), 1);
  EXPECT_EQ(DataBase::GetDataTable("b"), 3);
}

TEST_F(ExecuteSentence, SeesItsOwnRowsAndHidesThemFromOthersUntilCommit) {
  DataBase writer;
  writer.ExecuteSentence("insert into DATA(name, value) values('a', '1')");
  EXPECT_EQ(writer.ExecuteSentence("select * from DATA").size(), 1U);
  EXPECT_EQ(Count("DATA"), 0);
  writer.Commit();
  EXPECT_EQ(Count("DATA"), 1);
}

TEST_F(ExecuteSentence, ReadsAChangedTableWithAStatementPreparedBefore) {
  MakeTable("a INTEGER");
  Tests::TestDatabase::Run("insert into T values(1)");
  DataBase reader;
  EXPECT_THAT(reader.ExecuteSentence("select * from T").at(0), ElementsAre(DataBaseValue(1)));
  Tests::TestDatabase::Run("alter table T add column b TEXT default 'x'");
  EXPECT_THAT(reader.ExecuteSentence("select * from T").at(0),
              ElementsAre(DataBaseValue(1), Text("x")));
}

TEST_F(ExecuteSentence, RollsBackWhatIsNotCommitted) {
  {
    DataBase dataBase;
    dataBase.ExecuteSentence("insert into DATA(name, value) values('a', '1')");
    dataBase.Commit();
    dataBase.ExecuteSentence("insert into DATA(name, value) values('b', '2')");
  }
  EXPECT_EQ(Count("DATA"), 1);
  // The connection went back to the pool: its next user inherits no transaction.
  DataBase().Commit();
  EXPECT_EQ(Count("DATA"), 1);
}

TEST_F(ExecuteSentence, CommitsNothingOfABatchThatTheDatabaseGaveUp) {
  DataBase dataBase;
  const std::string insert = "insert or ignore into DATA(name, value) values('{1}', '{2}')";
  dataBase.ExecuteSentence(insert, {Text("first"), Text("1")});
  const auto pages = dataBase.ExecuteSentence("PRAGMA page_count").at(0).at(0);
  dataBase.ExecuteSentence("PRAGMA max_page_count=" + std::to_string(boost::get<int>(pages) + 4));
  const std::string large(40000, 'x');
  EXPECT_THAT(
      [&] {
        dataBase.ExecuteSentence(insert, {Text("large"), large});
      },
      ThrowsMessage<std::exception>(HasSubstr("full")));
  EXPECT_THAT(
      [&] {
        dataBase.ExecuteSentence(insert, {Text("small"), Text("2")});
      },
      ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  EXPECT_THAT([&] { dataBase.Commit(); }, ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  dataBase.ExecuteSentence("PRAGMA max_page_count=1073741823");
  EXPECT_EQ(Count("DATA"), 0);
}

TEST_F(ExecuteSentence, LetsThreadsWriteSideBySide) {
  constexpr int Threads = 6;
  constexpr int Batches = 10;
  std::atomic<int> failures{0};
  std::vector<std::thread> threads;
  for (int thread = 0; thread < Threads; ++thread) {
    threads.emplace_back([thread, &failures] {
      try {
        for (int batch = 0; batch < Batches; ++batch) {
          const std::string name = std::to_string(thread) + "/" + std::to_string(batch);
          DataBase dataBase;
          dataBase.ExecuteSentence("select count(*) from DATA");
          dataBase.ExecuteSentence("insert into DATA(name, value) values('{1}', '{2}')",
                                   {name, batch});
          if (batch % 2 == 0) dataBase.Commit();
        }
      } catch (const std::exception& error) {
        ADD_FAILURE() << error.what();
        ++failures;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(failures, 0);
  EXPECT_EQ(Count("DATA"), Threads * Batches / 2);
}

TEST_F(ExecuteSentence, NeedsAnOpenDatabase) {
  database_.Close();
  EXPECT_THAT([] { DataBase dataBase; },
              ThrowsMessage<std::runtime_error>(HasSubstr("no agent database")));
}

TEST_F(ExecuteSentence, FinishesABatchThatOutlivesTheDatabaseObject) {
  {
    DataBase dataBase;
    dataBase.ExecuteSentence("insert into DATA(name, value) values('a', '1')");
    database_.Close();
    dataBase.Commit();
  }
  database_.Open();
  EXPECT_EQ(DataBase::GetDataTable("a"), 1);
}

TEST_F(ExecuteSentence, OffersTheTableCallsWithoutAnObject) {
  EXPECT_TRUE(DataBase::ExistTable("RUD2_CURRENT_STATUS"));
  EXPECT_FALSE(DataBase::ExistTable("MISSING"));
  EXPECT_FALSE(DataBase::ExistTable("x' or '1'='1"));

  EXPECT_TRUE(DataBase::IsTableEmpty("KOB_NETWORK_DRIVES"));
  Tests::TestDatabase::Run("insert into KOB_NETWORK_DRIVES(id, Unit) values({1}, '{2}')",
                           {1ULL, Text("E:")});
  EXPECT_FALSE(DataBase::IsTableEmpty("KOB_NETWORK_DRIVES"));
  DataBase::ClearTable("KOB_NETWORK_DRIVES");
  EXPECT_TRUE(DataBase::IsTableEmpty("KOB_NETWORK_DRIVES"));

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
  Tests::TestDatabase::Run("update DATA set value='12 apples'");
  EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), 0);
}

TEST_F(ExecuteSentence, LetsTheLastDriveOfAPathReplaceTheOneBefore) {
  const std::string insert =
      "insert into KOB_NETWORK_DRIVES( id, Unit, Path, Server) values(%1%, '%2%', '%3%', '%4%')";
  const unsigned long long id = 0xFFFFFFFF00000007ULL;
  Tests::TestDatabase::Run(insert, {id, Text("E:"), Text("//a/o'b"), Text("a")});
  Tests::TestDatabase::Run(insert, {id, Text("F:"), Text("//a/o'b"), Text("a")});
  // The reader of the table wants an int: the low half of the id.
  EXPECT_THAT(DataBase().ExecuteSentence("select id, Unit, Path, Server from KOB_NETWORK_DRIVES"),
              ElementsAre(ElementsAre(DataBaseValue(7), Text("F:"), Text("//a/o'b"), Text("a"))));
}

}  // namespace
}  // namespace Norvik::Common
