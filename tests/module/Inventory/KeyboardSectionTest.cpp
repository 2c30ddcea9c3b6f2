#include "module/Inventory/KeyboardSection.h"

#include <gmock/gmock.h>

#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
using Lines = std::vector<std::string>;

/// The keyboards in the reports of both buses; the layout is "Fjordish".
Lines Collect(const std::string& usb, const std::string& bluetooth) {
  const TemporaryFolder folder;
  WriteFile(folder / "SPUSBDataType", usb);
  WriteFile(folder / "SPBluetoothDataType", bluetooth);
  Programs programs;
  programs.Add("system_profiler",
               "[ \"$1 $#\" = '-xml 2' ] && cat " + folder.Path().string() + "/\"$2\"");
  programs.Add("defaults",
               "[ \"$*\" = \"read $HOME/Library/Preferences/com.apple.HIToolbox.plist "
               "AppleSelectedInputSources\" ] && echo '(\n{\n\"KeyboardLayout Name\" = "
               "Fjordish;\n}\n)'");
  using Info = KeyboardInfo;
  return TextsOf(Collected<Info>(KeyboardSection()), &Info::type, &Info::pnpDeviceId, &Info::layout,
                 &Info::language, &Info::country, &Info::description, &Info::manufacturer);
}

std::string Device(const std::string& name, const std::string& below = "") {
  return Dictionary({{"_items", Array({below})},
                     {"_name", Text(name)},
                     {"manufacturer", Text(" Skerry Ltd. ")},
                     {"product_id", Text(" 0x0a01\n")},
                     {"vendor_id", Text("0x1a8f  (Skerry)")}});
}

TEST(KeyboardSection, UsbKeyboardsAreThoseOneLevelBelowABus) {
  const LogCapture log;
  const Lines keyboard = {"USB|0x0a01|Fjordish|Fjordish||0x1a8f  (Skerry)|Skerry Ltd."};
  const std::tuple<const char*, std::string, Lines> rows[] = {
      {"any case", Device("USBBus", Device("Skerry KEYBoard")), keyboard},
      {"a hub in one", Device("USBBus", Device("Hub in Skerry Keyboard")), keyboard},
      {"on the bus itself", Device("Skerry Keyboard"), {}},
      {"behind a hub", Device("USBBus", Device("Hub", Device("Skerry Keyboard"))), {}},
      {"another device", Device("USBBus", Device("Skerry Mouse")), {}},
      {"no name", Device("USBBus", Dictionary({{"product_id", Text("keyboard")}})), {}},
  };
  for (const auto& [name, bus, keyboards] : rows) {
    EXPECT_EQ(Collect(Report("SPUSBDataType", {bus}), ""), keyboards) << name;
  }
  EXPECT_TRUE(log.Holds(5, " Not implemented for keyboard with spi communication "));
  EXPECT_EQ(log.Texts(2), Lines());
}

TEST(KeyboardSection, BluetoothKeyboardsStandUnderTheKeyThatIsSpelledWrong) {
  const LogCapture log;
  const auto report = [](const std::string& items) {
    const auto device = Dictionary({{"device_addr", Text(" 00-1 ")},
                                    {"device_productID", Text("0x0267")},
                                    {"device_manufacturer", Text("Fjord")}});
    const auto title = Array({Dictionary({{"Anna's Keyboard", device}, {"Mouse", device}})});
    return PropertyList(
        Array({Dictionary({{items, Array({Dictionary({{"device_title", title}})})}})}));
  };
  EXPECT_EQ(Collect("", report("_itmes")), Lines{"Bluetooth|0x0267|Fjordish|Fjordish||00-1|Fjord"});
  EXPECT_EQ(Collect("", report("_items")), Lines());
  EXPECT_EQ(Collect("no report", "<plist>"), Lines());
  EXPECT_EQ(log.Texts(2), Lines());
}

TEST(KeyboardLayout, IsReadFromItsLine) {
  const std::pair<const char*, const char*> rows[] = {
      {"        \"KeyboardLayout Name\" = \"U.S.\";\n", "U.S."},
      {"x\n\"KeyboardLayout Name\" =  Swiss \\U00fc ;\n\"KeyboardLayout Name\" = Late;\n",
       "Swiss \\U00fc"},
      {"\"KeyboardLayout Name\" = Cut\n\"KeyboardLayout Name\" = Late;\n", ""},
      {"\"KeyboardLayout ID\" = 26;\n", ""},
      {"\"KeyboardLayout Name\" =;", ""},
      {"", ""},
  };
  for (const auto& [text, layout] : rows) EXPECT_EQ(ReadKeyboardLayout(text), layout) << text;
}

}  // namespace
}  // namespace Norvik::KOB
