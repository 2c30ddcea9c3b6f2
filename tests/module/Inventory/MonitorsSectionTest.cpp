#include "module/Inventory/MonitorsSection.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using namespace Tests;
using Lines = std::vector<std::string>;

const std::string FJORD_32 =
    "00ffffffffffff001a8f3412785634120c1f0104b53c2278226fb1a7554c9e250c50540000000101010101010101"
    "0101010101010101565e00a0a0a029503020350055502100001a000000fc00466a6f72642033320a20202020"
    "000000ff00464a333231370a202020202020000000fd00384c1e5311010a2020202020200000";

class MonitorsSectionTest : public testing::Test {
 protected:
  Lines Collect(const Lines& edids, const std::string& report) {
    std::string registry = "+-o Root  <class IORegistryEntry, id 0x100000100>\n";
    for (const auto& edid : edids) registry += "  | |   \"IODisplayEDID\" = <" + edid + ">\n";
    programs.AddOutput("ioreg", "-l", registry);
    programs.AddOutput("system_profiler", "-xml SPDisplaysDataType", report);
    monitors.clear();
    MonitorsSection().GetInfo(monitors);
    using Info = MonitorInfo;
    return TextsOf(monitors, &Info::manufacturer, &Info::model, &Info::name, &Info::serial,
                   &Info::revision);
  }
  static std::string Displays(const Lines& displays) {
    return Report("SPDisplaysDataType",
                  {Dictionary({}), Dictionary({{"spdisplays_ndrvs", Array(displays)}})});
  }

  Programs programs;
  LogCapture log;
  std::list<MonitorInfo> monitors;
};

TEST_F(MonitorsSectionTest, ReadsEachEdidOfTheRegistryAndThenAsksNoFurther) {
  std::string plain = FJORD_32;
  plain.replace(144, 72, 72, '0');
  EXPECT_THAT(
      Collect({FJORD_32, plain}, Displays({Dictionary({})})),
      ElementsAre("FTO|FTO1234|Fjord 32\n    |FJ3217\n      |1.4", "FTO|FTO1234||2018915346|1.4"));
  EXPECT_THAT(log.Texts(7), ElementsAre(">>", "<<"));
}

TEST_F(MonitorsSectionTest, AnEdidThatIsTooShortEndsTheRunAndKeepsWhatWasRead) {
  for (const std::size_t length : {0u, 15u, 35u, 143u, 215u, 216u, 221u}) {
    EXPECT_THROW(Collect({FJORD_32, FJORD_32.substr(0, length), FJORD_32}, ""), std::out_of_range);
    EXPECT_EQ(monitors.size(), 1U) << length;
  }
  EXPECT_EQ(Collect({FJORD_32.substr(0, 222)}, "").size(), 1U);
}

TEST_F(MonitorsSectionTest, WithoutAnEdidTheReportOfDisplaysIsRead) {
  const auto vendor = [](const char* digits) {
    return Dictionary({{"_spdisplays_display-vendor-id", Text(digits)}});
  };
  const auto lcd = Dictionary({{"_name", Text("Skerry LCD")},
                               {"_spdisplays_display-product-id", Text("1204")},
                               {"_spdisplays_display-serial-number", Text("fd626d62")},
                               {"_spdisplays_display-vendor-id", Text("610")}});
  EXPECT_THAT(Collect({}, Displays({lcd, Dictionary({}), vendor("1a8f")})),
              ElementsAre("APP|APPA@R|Skerry LCD|fd626d62|", "@@@|@@@@@@|||", "FTO|FTO@@@|||"));
  EXPECT_THAT(log.Texts(7), ElementsAre(">>", "<<"));
  // The unknown vendor: a stop without a word.
  EXPECT_EQ(Collect({}, Displays({lcd, vendor("756e6b6e"), lcd})).size(), 1U);
  EXPECT_THAT(log.Texts(7), ElementsAre(">>", "<<", ">>"));
  for (const std::string report : {"", "no report", "<plist><array/></plist>"}) {
    EXPECT_EQ(Collect({}, report), Lines()) << report;
  }
}

}  // namespace
}  // namespace Norvik::KOB
