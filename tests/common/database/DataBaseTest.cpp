#include "common/database/DataBase.h"

#include <boost/optional/optional_io.hpp>

#include "common/database/AgentData.h"
#include "common/database/Sentence.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

using namespace Tests;
using namespace V2;

DataBaseValue Text(const std::string& text) { return text; }

/// A plain number stands for an int or a double; {"long": 7} names another type.
DataBaseValue ValueOf(const Json& cell) {
  if (cell.is_string()) return cell.get<std::string>();
  if (cell.is_number_float()) return cell.get<double>();
  if (cell.is_number()) return cell.get<int>();
  if (cell.contains("unsigned int")) return cell["unsigned int"].get<unsigned int>();
  if (cell.contains("long")) return cell["long"].get<long>();
  if (cell.contains("long long")) return cell["long long"].get<long long>();
  return cell.at("unsigned long long").get<unsigned long long>();
}

DataBaseRow RowOf(const Json& cells) {
  DataBaseRow row;
  for (const Json& cell : cells) row.push_back(ValueOf(cell));
  return row;
}

void Insert(DataBase& dataBase, const std::string& name, const std::string& value) {
  dataBase.ExecuteSentence("insert into DATA(name, value) values('{1}', '{2}')", {name, value});
}

class ExecuteSentence : public Test, protected TestDatabase {
 protected:
  using TestDatabase::Run;

  static DataBaseRow FirstRow(const std::string& sentence,
                              const std::vector<DataBaseValue>& values = {}) {
    return DataBase().ExecuteSentence(sentence, values).at(0);
  }
  /// Rows of the general table that others see.
  static int Committed() { return boost::get<int>(FirstRow("select count(*) from DATA").at(0)); }
};

TEST_F(ExecuteSentence, GivesEveryTextBackAsItWasBound) {
  for (const Json& row : DataOf("common/database/texts.json")) {
    const std::string text = row.get<Bytes>();
    Run("delete from KOB_DATA");
    Run("insert into KOB_DATA(name, value) values('{1}', {2})", {text, text});
    EXPECT_EQ(FirstRow("select name, value from KOB_DATA where name='{1}' and value=%1%", {text}),
              (DataBaseRow{Text(text), Text(text)}))
        << row;
  }
}

TEST_F(ExecuteSentence, GivesEachCellItsTypeOrSaysWhatIsWrong) {
  for (const Json& row : DataOf("common/database/statements.json")) {
    SCOPED_TRACE(row["name"]);
    DataBase dataBase;
    DataBaseRows rows;
    for (const Json& step : row["statements"]) {
      const std::string fault = MessageOf<std::exception>([&] {
        rows = dataBase.ExecuteSentence(step[0], step.size() > 1 ? RowOf(step[1]) : DataBaseRow());
      });
      const bool isGood = step.size() < 3;
      EXPECT_THAT(fault, HasSubstr(isGood ? "" : step[2].get<std::string>())) << step;
      EXPECT_EQ(fault.empty(), isGood) << step;
    }
    DataBaseRows wanted;
    for (const Json& cells : row.value("gives", Json::array())) wanted.push_back(RowOf(cells));
    EXPECT_EQ(rows, wanted);
  }
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
  EXPECT_THAT([&] { Insert(dataBase, "large", std::string(640000, 'x')); },
              ThrowsMessage<std::exception>(HasSubstr("full")));
  EXPECT_THAT([&] { Insert(dataBase, "small", "2"); },
              ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  EXPECT_THAT([&] { dataBase.Commit(); }, ThrowsMessage<std::exception>(HasSubstr("rolled back")));
  dataBase.ExecuteSentence("PRAGMA max_page_count=1073741823");
  EXPECT_EQ(Committed(), 0);
}

TEST_F(ExecuteSentence, LetsThreadsWriteSideBySide) {
  const auto write = [](int thread) {
    const auto inBatches = [&] {
      for (int batch = 0; batch < 10; ++batch) {
        DataBase dataBase;
        dataBase.ExecuteSentence("select count(*) from DATA");
        Insert(dataBase, std::to_string(thread) + "/" + std::to_string(batch), "1");
        if (batch % 2 == 0) dataBase.Commit();
      }
    };
    EXPECT_EQ(MessageOf<std::exception>(inBatches), "");
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
  DataBase::SetDataTable("KOB_INVENTORY", 5);
  DataBase::SetDataTable("KOB_INVENTORY", -2147483647 - 1);
  EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), -2147483647 - 1);
  EXPECT_EQ(DataBase::GetOptionalStringDataTable("KOB_INVENTORY"), std::string("-2147483648"));
  Run("update DATA set value='12 apples'");
  EXPECT_EQ(DataBase::GetDataTable("KOB_INVENTORY"), 0);
}

TextList PartsOf(const std::string& text) {
  const Sentence sentence = ParseSentence(text);
  std::string shown;
  for (const auto& parameter : sentence.parameters) {
    shown += std::to_string(parameter.value + 1) + (parameter.asText ? "q " : " ");
  }
  return {sentence.sql, shown};
}

TEST(ParseSentence, ReplacesPlaceholdersAndNothingElse) {
  const Json tables = DataOf("common/database/sentences.json");
  ExpectRows(tables.front(), PartsOf);
}

class AgentDataTest : public Test {
 protected:
  TestDatabase database_;
  AgentData data_{database_, "KOB_DATA"};
};

TEST_F(AgentDataTest, KeepsTextsNumbersAndTimesAndReadsNoNumberOfAnotherText) {
  EXPECT_EQ(data_.GetOptionalString("k"), boost::none);
  EXPECT_EQ(data_.GetInt64("k"), nullptr);
  EXPECT_EQ(data_.GetDateTime("k"), nullptr);
  for (const std::string text :
       {"it's {1}", "", "\xC3\xB1", "x", "12x", " 12", "9223372036854775808"}) {
    EXPECT_TRUE(data_.SetString("k", text));
    EXPECT_EQ(data_.GetOptionalString("k"), text);
    EXPECT_EQ(data_.GetInt64("k"), nullptr) << text;
    EXPECT_EQ(data_.GetDateTime("k"), nullptr) << text;
  }
  for (const std::int64_t value : {std::numeric_limits<std::int64_t>::min(), std::int64_t{0},
                                   std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_TRUE(data_.SetInt64("k", value));
    EXPECT_THAT(data_.GetInt64("k"), Pointee(value));
  }
  EXPECT_EQ(data_.GetDateTime("k"), nullptr);
  EXPECT_TRUE(data_.SetDateTime("k", system_clock::from_time_t(1700000000) + milliseconds(900)));
  EXPECT_THAT(data_.GetDateTime("k"), Pointee(system_clock::from_time_t(1700000000)));

  EXPECT_TRUE(data_.Remove("k"));
  EXPECT_TRUE(data_.Remove("k"));
  EXPECT_EQ(data_.GetOptionalString("k"), boost::none);
}

TEST_F(AgentDataTest, AnswersByResultWhenTheTableOrTheDatabaseIsGone) {
  const LogCapture log;
  AgentData missing(database_, "MISSING");
  EXPECT_FALSE(missing.SetInt64("k", 1));
  EXPECT_EQ(log.Texts(2).size(), 1U);
  EXPECT_THROW(missing.GetInt64("k"), std::exception);

  data_.SetString("k", "v");
  database_.Close();
  EXPECT_EQ(data_.GetOptionalString("k"), boost::none);
  EXPECT_FALSE(data_.SetString("k", "w"));
  EXPECT_FALSE(data_.Remove("k"));
  database_.Open();
  EXPECT_EQ(AgentData(database_, "KOB_DATA").GetOptionalString("k"), std::string("v"));
}

}  // namespace
}  // namespace Norvik::Common
