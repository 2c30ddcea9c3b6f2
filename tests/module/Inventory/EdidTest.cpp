#include "module/Inventory/Edid.h"

#include <gtest/gtest.h>
#include <time.h>

#include <stdexcept>

#include "support/TimeZone.h"

namespace Norvik::KOB {
namespace {

using std::string_literals::operator""s;
using Row = std::pair<std::string, std::string>;

TEST(Edid, NumbersAreReadAsFarAsTheirDigitsGo) {
  const std::pair<std::string, std::int32_t> rows[] = {{"1f", 31},
                                                       {"1F", 31},
                                                       {"7fffffff", 2147483647},
                                                       {"80000000", 2147483647},
                                                       {"", 0},
                                                       {"xyz", 0},
                                                       {"1g", 1},
                                                       {"ffffffffffffffffffff", 2147483647},
                                                       {"00", 0},
                                                       {" 2a", 42},
                                                       {"1\0"
                                                        "2"s,
                                                        1},
                                                       {"-1", -1},
                                                       {"-80000001", -2147483647 - 1}};
  for (const auto& [text, number] : rows) EXPECT_EQ(hex2num(text), number) << text;
}

TEST(Edid, LettersAreUnpackedAndBytesChangePlaces) {
  const Row manufacturers[] = {{"0610", "APP"},    {"610", "APP"}, {"8610", "APP"},
                               {"10ac", "DEL"},    {"", "@@@"},    {"7c1f", "_@_"},
                               {"06101234", "APP"}};
  for (const auto& [text, letters] : manufacturers) EXPECT_EQ(getIDManufacturer(text), letters);
  const Row products[] = {{"1234", "3412"},
                          {"", "\0\0\0\0"s},
                          {"12",
                           "\0\0"
                           "12"s},
                          {"b80", "0\0b8"s},
                          {"123456", "3412"}};
  for (const auto& [text, code] : products) EXPECT_EQ(getProductCode(text), code) << text;
  const Row versions[] = {{"0104", "1.4"}, {"0a1f", "10.31"}, {"", "0.0"}, {"01", "1.0"}};
  for (const auto& [text, version] : versions) EXPECT_EQ(getEDIDVersion(text), version) << text;
}

TEST(Edid, DescriptorsKeepTheTextAsTheDisplayStoresIt) {
  const struct {
    std::string text;
    int kind;
    std::string content;
  } rows[] = {
      {"000000fc00466a6f72640a20202020202000", 2, "Fjord\n      \0"s},
      {"000000ff00303132334100ff0a2020202020", 1, "0123A\0\xFF\n     "s},
      {"000000fe00534b33330a2020202020202020", 1, "SK33\n        "},
      {"000000fd00384c1e53110120202020202020", 3, ""},
      {"000000FC00466a6f72640a20202020202020", 3, ""},  // deliberately lower case only
      {"4dd000a0f0703e803020350058c110000018", 3, ""},
      {"000000fc0046f", 2, "F\xF"},
      {"000000fc0", 2, ""},
      {"000000", 3, ""},
  };
  for (const auto& [text, kind, content] : rows) {
    const Descriptor descriptor = getDescriptor(text);
    EXPECT_EQ(descriptor.kind, kind) << text;
    EXPECT_EQ(descriptor.text, content) << text;
  }
  EXPECT_THROW(getDescriptor("00000"), std::out_of_range);
}

TEST(Edid, NameAndSerialAreTheFirstOfTheirKind) {
  const Descriptor other, name{Descriptor::NAME, "name"}, second{Descriptor::NAME, "second"},
      serial{Descriptor::SERIAL, "serial"}, late{Descriptor::SERIAL, "late"};
  EXPECT_EQ(getName({other, name, second}), "name");
  EXPECT_EQ(getName({other, serial}), "");
  EXPECT_EQ(getSerial({name, serial, late}, "01020304"), "serial");
  // Deliberately in the order of the digits.
  EXPECT_EQ(getSerial({other, name}, "01020304"), "16909060");
  EXPECT_EQ(getSerial({}, "00000000"), "0");
  EXPECT_EQ(getSerial({}, "fd626d62"), "2147483647");
}

TEST(Edid, DatesAreTheFirstOfAMonthInLocalTime) {
  const Tests::TimeZone utc("UTC0");
  const std::pair<const char*, const char*> rows[] = {
      {"0016", "2012-01-01"},   {"0316", "2012-01-01"},
      {"0416", "2012-02-01"},   {"3416", "2013-02-01"},  // week 52, deliberately
      {"ff1e", "2025-04-01"},                            // a model year
      {"122018", "2022-05-01"},                          // decimal week and year, deliberately
      {"00", "1990-01-01"},     {"", "1990-01-01"},
      {"002f", "2037-01-01"},   {"00ff", "1972-10-18"},  // 2245, cut to 32 bits
  };
  for (const auto& [text, date] : rows) {
    const auto seconds = static_cast<::time_t>(static_cast<std::uint32_t>(getDate(text)));
    char day[16];
    ::strftime(day, sizeof(day), "%Y-%m-%d", ::gmtime(&seconds));
    EXPECT_STREQ(day, date) << text;
  }
}

}  // namespace
}  // namespace Norvik::KOB
