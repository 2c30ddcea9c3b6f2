#include "host/run/ChangeNotice.h"

#include "common/database/DataBase.h"
#include "support/Test.h"
#include "support/TestDatabase.h"

namespace {

using namespace Norvik::Tests;
using Norvik::Common::V2::DataBase;
using std::chrono::system_clock;

TEST(ChangeNotice, SaysWhenTheModuleTakesTheInventory) {
  constexpr std::time_t NOW = 1'767'225'600;
  const TestDatabase database;
  // Seconds since the last inventory, the least period, and seconds until the next one.
  const std::vector<std::tuple<int, std::string, int>> rows = {
      {5, "", 0}, {5, "x", 0}, {60, "60", 0}, {59, "60", 11}, {1, "3600", 3609}, {0, "", -1}};
  for (const auto& [ago, period, wait] : rows) {
    DataBase::SetDataTable("KOB_INVENTORY", static_cast<int>(NOW) - ago);
    TestDatabase::Run("delete from KOB_DATA");
    if (!period.empty()) {
      TestDatabase::Run("insert into KOB_DATA(name, value) values('inventory_changed_period', '" +
                        period + "')");
    }
    const auto next = Norvik::Host::InventoryAfterChange(system_clock::from_time_t(NOW));
    EXPECT_EQ(next ? system_clock::to_time_t(*next) - NOW : -1, wait) << ago << " " << period;
  }
}

}  // namespace
