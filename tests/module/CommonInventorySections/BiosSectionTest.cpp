#include "module/CommonInventorySections/BiosSection.h"

#include <gtest/gtest.h>
#include <time.h>

#include "support/LogCapture.h"
#include "support/SmbiosTable.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

/// In the zone of this process, as the library has asked for it once.
std::time_t Midnight(int year, int month, int day) {
  ::tm fields{};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_isdst = -1;
  return ::mktime(&fields);
}

TEST(BiosSection, TheDateIsALocalMidnight) {
  const LogCapture log;
  const auto dateIn = [](const SmbiosBytes& table) {
    const auto smBios = std::make_shared<Common::SmBios>(0x204, table);
    SmBiosInfo info;
    info.date = 5;
    BiosSection(smBios).GetInfo(info);
    return info.date;
  };
  const std::pair<const char*, std::time_t> rows[] = {{"04/27/2021", Midnight(2021, 4, 27)},
                                                      {"12/02/2009", Midnight(2009, 12, 2)},
                                                      {"04/27/21", -1},
                                                      {"13/45/2021", 0},
                                                      {"no date", 0},
                                                      {"", 0}};
  for (const auto& [text, date] : rows) {
    const Json firmware = {0, 0, {1, 0, 0, 0, 2}, "Fjord Inc.", text};
    EXPECT_EQ(dateIn(SmbiosTableOf(Json::array({firmware}))), date) << text;
  }
  EXPECT_EQ(dateIn({1, 4, 0, 0, 0, 0}), 0);  // no firmware at all
  EXPECT_THROW(BiosSection({}).GetInfo(*std::make_unique<SmBiosInfo>()), std::bad_weak_ptr);
}

}  // namespace
}  // namespace Norvik::KOB
