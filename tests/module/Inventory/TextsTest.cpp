#include <gtest/gtest.h>

#include <sstream>

#include "module/Inventory/CSharedResourcesSection.h"
#include "module/Inventory/KeyboardSection.h"
#include "module/Inventory/NetworkDrivesSection.h"
#include "module/Inventory/PrintersSection.h"
#include "support/RecordJson.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

/// The printers of a configuration as lists of their fields; the driver of "p" is "D:p".
std::vector<std::vector<Bytes>> PrintersIn(const Bytes& configuration) {
  std::istringstream stream(configuration);
  const auto driver = [](const wxString& name) { return "D:" + name; };
  std::vector<std::vector<Bytes>> printers;
  for (const auto& it : ReadPrintersConfiguration(stream, driver)) {
    auto& fields = printers.emplace_back();
    for (const auto& text : {it.name, it.description, it.port, it.driverName, it.manufacturer}) {
      fields.emplace_back(std::string(text.utf8_str()));
    }
  }
  return printers;
}

std::vector<std::string> PrinterP(const Bytes& lines) {
  const Json printer = PrintersIn("<Printer p>\n" + lines + "\n</Printer>\n").at(0);
  return {printer[1], printer[2], printer[4]};
}

/// The last name wins.
std::string DriverNameIn(const Bytes& description) {
  std::istringstream stream(description);
  return std::string(ReadDriverName(stream).utf8_str());
}

/// Description and path of a share with these properties.
std::vector<std::string> ShareWith(const Bytes& properties) {
  const Json share = JsonOf(ReadShares("s\n\n", [&](const std::string&) { return properties; }));
  EXPECT_EQ(share.size(), 1u);
  return {share[0]["description"], share[0]["path"]};
}

TEST(SectionTexts, TellWhatTheirReadersFindInThem) {
  const Json tables = DataOf("module/Inventory/texts.json");
  ExpectRows(tables["configurations of printers"], PrintersIn);
  ExpectRows(tables["lines of a printer: description, port, manufacturer"], PrinterP);
  ExpectRows(tables["names of drivers"], DriverNameIn);
  ExpectRows(tables["keyboard layouts"], ReadKeyboardLayout);
  ExpectRows(tables["servers of volumes"], ServerOfVolume);
  ExpectRows(tables["properties of shares: description, path"], ShareWith);
}

TEST(PrintersConfiguration, IsReadInTimeThatGrowsWithItsSize) {
  const std::string blanks(1000000, ' ');
  EXPECT_EQ(PrinterP(blanks + "DeviceURI u\n</Printer>" + blanks)[1], "u");
}

}  // namespace
}  // namespace Norvik::KOB
