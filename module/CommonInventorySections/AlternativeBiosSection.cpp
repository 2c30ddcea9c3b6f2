#include "module/CommonInventorySections/AlternativeBiosSection.h"

#include <CoreFoundation/CoreFoundation.h>
#include <IOKit/IOKitLib.h>
#include <string.h>

#include <boost/algorithm/string/erase.hpp>
#include <boost/optional/optional.hpp>
#include <boost/property_tree/ptree.hpp>
#include <chrono>
#include <string>

#include "common/apple/MacXMLToJSONParser.h"
#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "common/text/Dates.h"
#include "common/text/Text.h"
#include "module/Inventory/ProfilerReport.h"
#include "platform/CfText.h"
#include "platform/ScopedHandle.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;
using Platform::CfRef;
using Platform::IoObject;

constexpr char REPORT_COMMAND[] = "system_profiler -xml SPHardwareDataType";
constexpr char REPORT_TYPE[] = "SPHardwareDataType";
// The two spaces before "-l" are part of the command.
constexpr char REGISTRY_COMMAND[] = "ioreg -a  -l -p IODeviceTree -c IORegistryEntry";
constexpr char FIRMWARE_MARK[] = "iBoot-";

/// Deliberately only the summer time of one zone, which the firmware's maker writes: the server
/// expects no date for any other.
constexpr char TIME_STAMP_FORMAT[] = "%a %b %d %H:%M:%S PDT %Y ";

IoObject FindPlatformExpert() {
  return IoObject(
      ::IOServiceGetMatchingService(MACH_PORT_NULL, ::IOServiceMatching("IOPlatformExpertDevice")));
}

/// Bytes of a property up to the first NUL. Empty optional if the property is absent or not data.
boost::optional<std::string> TextProperty(const IoObject& service, const char* name) {
  const CfRef<CFTypeRef> property(::IORegistryEntryCreateCFProperty(
      service.Get(), Platform::CfTextOf(name).Get(), kCFAllocatorDefault, 0));
  if (!property || ::CFGetTypeID(property.Get()) != ::CFDataGetTypeID()) return boost::none;
  const auto data = static_cast<CFDataRef>(property.Get());
  const auto* const text = reinterpret_cast<const char*>(::CFDataGetBytePtr(data));
  if (!text) return std::string();
  return std::string(text, ::strnlen(text, static_cast<std::size_t>(::CFDataGetLength(data))));
}

void ReadPlatformExpert(const IoObject& service, SmBiosInfo& result) {
  if (const auto text = TextProperty(service, "time-stamp")) {
    result.date =
        std::chrono::system_clock::to_time_t(Common::StringToTimePoint(*text, TIME_STAMP_FORMAT));
  }
  if (const auto text = TextProperty(service, "manufacturer")) {
    result.manufacturer = Common::WxStringFromStdString(*text);
  }
}

void ReadBootRomVersion(SmBiosInfo& result) {
  const ptree report = ProfilerReportOf(REPORT_COMMAND);
  for (const auto& [typeName, type] : report.get_child("array")) {
    if (type.get("_dataType", "") != REPORT_TYPE) continue;
    for (const auto& [itemName, item] : ChildOrEmpty(type, "_items")) {
      const auto version = item.get_optional<std::string>("boot_rom_version");
      if (version) result.version = Common::WxStringFromStdString(*version);
    }
  }
}

void ReadFirmwareVersion(SmBiosInfo& result) {
  ptree tree;
  Common::MacXMLToJSONParser(Common::CommandRunner::ExecCommand(REGISTRY_COMMAND), tree)
      .Parse("plist");
  // Throws if the property is absent.
  const ptree& version =
      Common::MacXMLToJSONParser::SearchNode(tree, "system-firmware-version").value();
  for (const auto& text : Common::Base64Coder::DecodeStringBytes(version.data())) {
    if (text.find(FIRMWARE_MARK) == std::string::npos) continue;
    result.version =
        Common::WxStringFromStdString(boost::algorithm::erase_first_copy(text, FIRMWARE_MARK));
    return;
  }
}

}  // namespace

void AlternativeBiosSection::GetInfo(SmBiosInfo& result) {
  NORVIK_SCOPE();
  const IoObject service = FindPlatformExpert();
  if (!service) {
    NORVIK_ERROR("No \"IOPlatformExpertDevice\" IOService in IORegistry ");
    return;
  }
  ReadPlatformExpert(service, result);
  ReadBootRomVersion(result);
  if (result.version.empty()) ReadFirmwareVersion(result);
}

}  // namespace Norvik::KOB
