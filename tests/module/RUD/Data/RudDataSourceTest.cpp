#include <gmock/gmock.h>

#include "module/RUD/Data/RudDataSourceV2.h"
#include "support/TestDatabase.h"

namespace Norvik::KOB::V2 {
namespace {

using Tests::TestDatabase;

TEST(RudDataSource, ATransitionWritesItsStateAndItsTimeOnly) {
  const TestDatabase database;
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusNone);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusScanning, 100, DateBegin));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusScanning);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusSaving, 200, DateModified));
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusFinished, 300, DateEnd));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusFinished);
  EXPECT_TRUE(RudDataSource::SetStatus(RudStatusScanning, 400, DateBegin));
  EXPECT_EQ(TestDatabase::Run("select id, id_state_harverting, date_begin, date_modified, date_end "
                              "from RUD2_CURRENT_STATUS"),
            Common::V2::DataBaseRows({{1, 3, 400, 200, 300}}));
}

TEST(RudDataSource, ATimeThatNobodyKnowsIsRefusedByTheStore) {
  const TestDatabase database;
  EXPECT_ANY_THROW(RudDataSource::SetStatus(RudStatusSaving, 1, static_cast<TimePointStatus>(9)));
  EXPECT_EQ(RudDataSource::GetStatus(), RudStatusNone);
}

}  // namespace
}  // namespace Norvik::KOB::V2
