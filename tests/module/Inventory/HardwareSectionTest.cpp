#include "module/Inventory/HardwareSection.h"

#include <gmock/gmock.h>

#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using namespace Tests;
using Lines = std::vector<std::string>;

/// The working directory is a folder of the test's.
class HardwareSectionTest : public testing::Test {
 protected:
  HardwareSectionTest() { boost::filesystem::current_path(folder.Path()); }
  ~HardwareSectionTest() override { boost::filesystem::current_path(previous); }

  Lines Collect(const std::string& report) {
    programs.AddOutput("system_profiler", "-xml SPUSBDataType", report);
    using Info = HardwareInfo;
    return TextsOf(Collected<Info>(HardwareSection()), &Info::name, &Info::manufacturer,
                   &Info::pnpDeviceId);
  }

  const boost::filesystem::path previous = boost::filesystem::current_path();
  TemporaryFolder folder;
  Programs programs;
  LogCapture log;
};

/// A report whose first bus holds the devices, as systems before 2011 print it.
std::string OldReport(const std::string& devices) {
  const auto bus = Dictionary({{"_items", Array({devices})}, {"_name", Text("Bus")}});
  return PropertyList(Array({Dictionary({{"_items", Array({bus, bus})}})}));
}

TEST_F(HardwareSectionTest, ListsTheDevicesOfTheFirstBus) {
  const auto camera = Dictionary({{"_name", Text("F&#246;rde Camera")},
                                  {"f_manufacturer", Text("Skerry")},
                                  {"g_location_id", Text("0xfd400000 / 2")}});
  const auto hub = Dictionary({{"_items", Array({camera, camera})}, {"_name", Text("Hub")}});
  const std::tuple<const char*, std::string, Lines> rows[] = {
      {"a hub counts once", hub + camera, {"Hub||", "F\xC3\xB6rde Camera|Skerry|0xfd400000 / 2"}},
      {"nothing known", "<string>x</string><dict><key>location_id</key></dict>", {"||", "||"}},
      {"values that are none",
       "<dict><key>_name</key><string/><key>f_manufacturer</key></dict>",
       {"||"}},
      {"value in an element", "<dict><key>_name</key><dict><key>x</key></dict></dict>", {"||"}},
      {"none", "", {}},
  };
  for (const auto& [name, devices, texts] : rows) {
    EXPECT_EQ(Collect(OldReport(devices)), texts) << name;
  }
  EXPECT_EQ(ContentOf("temp"), OldReport(""));
  EXPECT_EQ(log.Texts(2), Lines());
}

TEST_F(HardwareSectionTest, EndsInTheWordsOfTheCommandWhereTheyComeFirst) {
  EXPECT_EQ(Collect(Report("SPUSBDataType", {Dictionary({{"_name", Text("x")}})})), Lines());
  EXPECT_THAT(log.Texts(4),
              ElementsAre("plist", "array", "dict", "key", "array", "string", "text"));
}

TEST_F(HardwareSectionTest, AReportThatCannotBeReadIsLogged) {
  std::string deep = "<plist>";
  for (int i = 0; i < 200000; ++i) deep += "<a>";
  const Lines reports = {"", "USB:\n", {"\x7F\0<plist>", 9}, OldReport("").substr(0, 300), deep};
  for (const auto& report : reports) EXPECT_EQ(Collect(report), Lines());
  EXPECT_EQ(log.Texts(2), Lines(reports.size(), "Attempt to read SPUSBDataType failed"));
}

}  // namespace
}  // namespace Norvik::KOB
