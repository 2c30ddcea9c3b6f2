#include "common/database/AgentData.h"

#include <boost/optional/optional_io.hpp>

#include "support/Test.h"
#include "support/TestDatabase.h"

namespace Norvik::Common {
namespace {

using std::chrono::milliseconds;
using std::chrono::system_clock;
using testing::Pointee;
using Limits = std::numeric_limits<std::int64_t>;

class AgentDataTest : public testing::Test {
 protected:
  Tests::TestDatabase database_;
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
  for (const std::int64_t value : {Limits::min(), std::int64_t{0}, Limits::max()}) {
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
  const Tests::LogCapture log;
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
