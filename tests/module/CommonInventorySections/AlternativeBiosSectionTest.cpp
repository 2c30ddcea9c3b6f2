#include "module/CommonInventorySections/AlternativeBiosSection.h"

#include <gtest/gtest.h>

#include <boost/optional/bad_optional_access.hpp>
#include <boost/property_tree/exceptions.hpp>

#include "platform/RecordedMachine.h"
#include "platform/compat/LiveObjects.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"
#include "support/TimeZone.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Properties = std::vector<std::pair<std::string, std::string>>;

// Bytes of properties, in Base64. All but one end in a NUL.
constexpr char WINTER[] =
    "RnJpIE1hciAxMiAxMDoxMToxMiBQU1QgMjAyMQA=";  // Fri Mar 12 10:11:12 PST 2021
constexpr char SUMMER[] =
    "RnJpIEp1bCAxMiAxMDoxMToxMiBQRFQgMjAyMQA=";  // Fri Jul 12 10:11:12 PDT 2021
constexpr char MAKER[] = "RmpvcmQgSW5jLgA=";     // Fjord Inc.
constexpr char MAKER_WITHOUT_NUL[] = "RmpvcmQgSW5jLg==";
// mBoot-18, pre iBoot-42.iBoot-7, iBoot-99
constexpr char FIRMWARES[] = "bUJvb3QtMTgAcHJlIGlCb290LTQyLmlCb290LTcAaUJvb3QtOTkA";
constexpr char OTHER_FIRMWARE[] = "bUJvb3QtMTgA";  // mBoot-18

std::string Data(const std::string& base64) { return "<data>\n\t\t" + base64 + "\n\t</data>\n"; }

/// What is told on a machine with these properties of the platform expert and these tools.
SmBiosInfo Collect(Properties expert, const std::string& report, const std::string& registry = "") {
  const TemporaryFolder folder;
  boost::filesystem::create_directories(folder / "bin");
  expert.push_back({"IOObjectClass", Text("IOPlatformExpertDevice")});
  const auto root = Dictionary({{"IOObjectClass", Text("IORegistryEntry")},
                                {"IORegistryEntryChildren", Array({Dictionary(expert)})}});
  WriteFile(folder / "ioregistry.plist", PropertyList(root));
  const Platform::RecordedMachine machine(folder.Path().string());
  Programs programs;
  programs.AddOutput("system_profiler", "-xml SPHardwareDataType", report);
  programs.AddOutput("ioreg", "-a -l -p IODeviceTree -c IORegistryEntry", registry);
  SmBiosInfo info;
  AlternativeBiosSection().GetInfo(info);
  EXPECT_EQ(Platform::CountLiveObjects(), Platform::LiveObjects());
  return info;
}

std::string Hardware(const std::vector<std::string>& versions) {
  std::vector<std::string> items;
  for (const auto& it : versions) items.push_back(Dictionary({{"boot_rom_version", Text(it)}}));
  items.push_back(Dictionary({}));
  return Report("SPHardwareDataType", items);
}

TEST(AlternativeBiosSection, ReadsThePlatformExpert) {
  const TimeZone utc("UTC0");
  const std::tuple<const char*, Properties, std::time_t, const char*> rows[] = {
      {"summer",
       {{"time-stamp", Data(SUMMER)}, {"manufacturer", Data(MAKER)}},
       1626084672,
       "Fjord Inc."},
      {"winter: deliberately none", {{"time-stamp", Data(WINTER)}}, 0, ""},
      {"no NUL", {{"manufacturer", Data(MAKER_WITHOUT_NUL)}}, 0, "Fjord Inc."},
      {"no bytes", {{"time-stamp", Data("")}, {"manufacturer", Data("")}}, 0, ""},
      {"no data", {{"time-stamp", "<true/>"}, {"manufacturer", Text("x")}}, 0, ""},
  };
  for (const auto& [name, properties, date, manufacturer] : rows) {
    const SmBiosInfo info = Collect(properties, Hardware({"1", "2"}));
    EXPECT_EQ(info.date, date) << name;
    EXPECT_EQ(info.manufacturer, manufacturer) << name;
    EXPECT_EQ(info.version, "2") << name;
    EXPECT_EQ(info.romSize, 0) << name;
  }
}

TEST(AlternativeBiosSection, WithoutABootRomTheFirmwareTellsTheVersion) {
  const auto registry = [&](const char* firmware) {
    const auto child = Dictionary({{"system-firmware-version", Data(firmware)}});
    return PropertyList(Dictionary({{"IORegistryEntryChildren", Array({child})}}));
  };
  const auto other = Report("SPUSBDataType", {Dictionary({{"boot_rom_version", Text("1")}})});
  EXPECT_EQ(Collect({}, other, registry(FIRMWARES)).version, "pre 42.iBoot-7");
  EXPECT_EQ(Collect({}, Hardware({}), registry(OTHER_FIRMWARE)).version, "");
  EXPECT_THROW(Collect({}, ""), boost::property_tree::ptree_bad_path);
  for (const std::string nothing : {"", "+-o Root", "<plist><dict/></plist>"}) {
    EXPECT_THROW(Collect({}, Hardware({}), nothing), boost::bad_optional_access) << nothing;
  }
}

TEST(AlternativeBiosSection, AMachineWithoutAPlatformExpertIsLogged) {
  const LogCapture log;
  SmBiosInfo info;
  AlternativeBiosSection().GetInfo(info);
  EXPECT_TRUE(log.Holds(2, "No \"IOPlatformExpertDevice\" IOService in IORegistry "));
}

}  // namespace
}  // namespace Norvik::KOB
