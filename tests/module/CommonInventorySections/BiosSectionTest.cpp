#include "module/CommonInventorySections/BiosSection.h"

#include <gtest/gtest.h>
#include <time.h>

#include "support/LogCapture.h"
#include "support/SmbiosTable.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

SmBiosInfo Collect(std::uint32_t version, const std::vector<std::uint8_t>& table,
                   SmBiosInfo info = {}) {
  const LogCapture log;
  const auto smBios = std::make_shared<Common::SmBios>(version, table);
  BiosSection(smBios).GetInfo(info);
  return info;
}

/// Firmware of 26 bytes; bytes 23 and 24 hold the word.
std::vector<std::uint8_t> Firmware(const std::string& date, std::uint8_t size = 0,
                                   std::uint16_t word = 0) {
  std::vector<std::uint8_t> fields(22, 0xEE);
  fields[0] = 1;
  fields[1] = 2;
  fields[4] = 3;
  fields[5] = size;
  fields[19] = static_cast<std::uint8_t>(word & 0xFF);
  fields[20] = static_cast<std::uint8_t>(word >> 8);
  std::vector<std::uint8_t> table;
  AddStructure(table, 0, 0, fields, {"Fjord Inc.", "    FJ7.88Z.0011.B00", date});
  return table;
}

TEST(BiosSection, TheDateIsALocalMidnight) {
  // In the zone of this process, as the library has asked for it once.
  const auto midnight = [](int year, int month, int day) {
    ::tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = day;
    fields.tm_isdst = -1;
    return ::mktime(&fields);
  };
  const std::pair<const char*, std::time_t> rows[] = {{"04/27/2021", midnight(2021, 4, 27)},
                                                      {"12/02/2009", midnight(2009, 12, 2)},
                                                      {"04/27/21", -1},
                                                      {"13/45/2021", 0},
                                                      {"no date", 0},
                                                      {"", 0}};
  SmBiosInfo before;
  before.date = 5;
  for (const auto& [text, date] : rows) {
    EXPECT_EQ(Collect(0x204, Firmware(text), before).date, date) << text;
  }
  EXPECT_EQ(Collect(0x204, {1, 4, 0, 0, 0, 0}, before).date, 0);  // no firmware at all
}

TEST(BiosSection, TheSizeOfTheRomDependsOnTheVersionOfTheTable) {
  const struct {
    std::uint32_t version;
    std::uint8_t size;
    std::uint16_t word;
    int romSize;
  } rows[] = {{0x204, 0x7F, 9, 8388608}, {0x300, 0xFF, 9, 16777216},
              {0x301, 0xFF, 9, 655360},  {0x301, 0xFE, 9, 77},
              {0x302, 0xFF, 0xFFFF, 0},  {0x302, 0xFF, 0x7FFF, -2147483647 - 1}};
  SmBiosInfo before;
  before.romSize = 77;
  for (const auto& [version, size, word, romSize] : rows) {
    EXPECT_EQ(Collect(version, Firmware("", size, word), before).romSize, romSize)
        << version << " " << int(size) << " " << word;
  }
}

TEST(BiosSection, TheFirstFirmwareWithAVendorCounts) {
  std::vector<std::uint8_t> table;
  AddStructure(table, 0, 0, {0, 1}, {"first"});
  AddStructure(table, 0, 1, {1, 2}, {"Fjord Inc.", "  second"});
  AddStructure(table, 0, 2, {1, 2}, {"Late", "third"});
  const SmBiosInfo info = Collect(0x301, table);
  EXPECT_EQ(info.manufacturer, "Fjord Inc.");
  EXPECT_EQ(info.version, "  second");
  EXPECT_EQ(info.romSize, 0);  // the structure is too short to tell
  EXPECT_THROW(BiosSection({}).GetInfo(*std::make_unique<SmBiosInfo>()), std::bad_weak_ptr);
}

}  // namespace
}  // namespace Norvik::KOB
