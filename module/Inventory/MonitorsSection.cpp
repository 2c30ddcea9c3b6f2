#include "module/Inventory/MonitorsSection.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <sstream>
#include <vector>

#include "common/commands/CommandRunner.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "module/Inventory/Edid.h"
#include "module/Inventory/ProfilerReport.h"

namespace Norvik::KOB {

namespace {

using boost::property_tree::ptree;

constexpr char EDID_COMMAND[] =
    R"(ioreg -l | grep IODisplayEDID | sed -e's/<//g' -e's/>//g' -e's/ //g' | awk -F= '{print $2}')";
constexpr char DISPLAYS_REPORT_COMMAND[] = "system_profiler -xml SPDisplaysDataType";

/// Vendor of a display that does not identify itself: "unkn" as hexadecimal text.
constexpr char UNKNOWN_VENDOR[] = "756e6b6e";

/// Accepts any bytes, because a display may store any.
wxString TextOf(const std::string& bytes) {
  return Common::WxStringFromStdString(Common::EncodeUtf8Characters(bytes));
}

/// A product number as four digits: the report leaves out zeros in front.
std::string ProductDigits(const std::string& number) {
  constexpr std::size_t DIGITS = 4;
  return std::string(DIGITS - std::min(DIGITS, number.size()), '0') + number;
}

MonitorInfo MonitorFromEdid(const std::string& line) {
  const std::string manufacturer = getIDManufacturer(line.substr(16, 4));
  MonitorInfo monitor;
  monitor.manufacturer = TextOf(manufacturer);
  monitor.model = TextOf(manufacturer + getProductCode(line.substr(20, 4)));
  monitor.revision = TextOf(getEDIDVersion(line.substr(36, 4)));
  std::vector<Descriptor> descriptors;
  for (const std::size_t at : {144u, 180u, 216u}) {
    descriptors.push_back(getDescriptor(line.substr(at, 36)));
  }
  monitor.name = TextOf(getName(descriptors));
  monitor.serial = TextOf(getSerial(descriptors, line.substr(24, 8)));
  monitor.date = getDate(line.substr(32, 4));
  return monitor;
}

MonitorInfo MonitorFromReport(const ptree& display) {
  const auto text = [&](const char* key) { return display.get(key, ""); };
  const std::string manufacturer = getIDManufacturer(text("_spdisplays_display-vendor-id"));
  MonitorInfo monitor;
  monitor.manufacturer = TextOf(manufacturer);
  // Deliberately decoded as three letters: the server knows models from this source by them.
  const std::string product = ProductDigits(text("_spdisplays_display-product-id"));
  monitor.model = TextOf(manufacturer + getIDManufacturer(getProductCode(product)));
  monitor.name = TextOf(text("_name"));
  monitor.serial = TextOf(text("_spdisplays_display-serial-number"));
  // Deliberately reads decimal numbers as hexadecimal digits: dates stay comparable with those that
  // the server has.
  monitor.date = getDate(text("_spdisplays_display-week") + text("_spdisplays_display-year"));
  return monitor;
}

/// False if a display of unknown vendor ended the list.
bool AddFromReport(const ptree& report, std::list<MonitorInfo>& result) {
  for (const auto& [typeName, type] : ChildOrEmpty(report, "array")) {
    for (const auto& [itemName, item] : ChildOrEmpty(type, "_items")) {
      for (const auto& [displayName, display] : ChildOrEmpty(item, "spdisplays_ndrvs")) {
        if (display.get("_spdisplays_display-vendor-id", "") == UNKNOWN_VENDOR) return false;
        result.push_back(MonitorFromReport(display));
      }
    }
  }
  return true;
}

}  // namespace

void ReadEdidLines(const std::string& lines, std::list<MonitorInfo>& result) {
  std::istringstream stream(lines);
  for (std::string line; std::getline(stream, line);) result.push_back(MonitorFromEdid(line));
}

void MonitorsSection::GetInfo(std::list<MonitorInfo>& result) {
  NORVIK_TRACE(">>");
  const std::string lines = Common::CommandRunner::ExecCommand(EDID_COMMAND);
  if (!lines.empty()) {
    ReadEdidLines(lines, result);
  } else if (!AddFromReport(ProfilerReportOf(DISPLAYS_REPORT_COMMAND), result)) {
    // Deliberately returns without the closing trace: displays after an unknown one are left out.
    return;
  }
  NORVIK_TRACE("<<");
}

}  // namespace Norvik::KOB
