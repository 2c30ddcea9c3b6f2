#include "module/Inventory/CSharedResourcesSection.h"
#include "module/Inventory/Edid.h"
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

TextList PrinterP(const Bytes& lines) {
  const Json printer = PrintersIn("<Printer p>\n" + lines + "\n</Printer>\n").at(0);
  return {printer[1], printer[2], printer[4]};
}

std::string DriverNameIn(const Bytes& description) {
  std::istringstream stream(description);
  return std::string(ReadDriverName(stream).utf8_str());
}

TextList ShareWith(const Bytes& properties) {
  const Json share = JsonOf(ReadShares("s\n\n", [&](const std::string&) { return properties; }));
  EXPECT_EQ(share.size(), 1u);
  return {share[0]["description"], share[0]["path"]};
}

std::string DateOf(const std::string& text) {
  const auto time = static_cast<::time_t>(static_cast<std::uint32_t>(getDate(text)));
  char day[16];
  ::strftime(day, sizeof(day), "%Y-%m-%d", ::gmtime(&time));
  return day;
}

Json KindAndText(const std::string& text) {
  const Descriptor descriptor = getDescriptor(text);
  return {static_cast<int>(descriptor.kind), Bytes(descriptor.text)};
}

/// Name and serial number of a display with these texts, where the digits are its serial number.
TextList NameAndSerial(const std::vector<std::pair<int, std::string>>& texts,
                       const std::string& digits) {
  std::vector<Descriptor> descriptors;
  for (const auto& [kind, text] : texts) descriptors.push_back({kind, text});
  return {getName(descriptors), getSerial(descriptors, digits)};
}

template <auto function>
void CheckRows(const Json& rows) {
  ExpectRows(rows, function);
}

const std::pair<const char*, void (*)(const Json&)> TABLES[] = {
    {"configurations of printers", CheckRows<PrintersIn>},
    {"lines of a printer: description, port, manufacturer", CheckRows<PrinterP>},
    {"names of drivers", CheckRows<DriverNameIn>},
    {"keyboard layouts", CheckRows<ReadKeyboardLayout>},
    {"servers of volumes", CheckRows<ServerOfVolume>},
    {"properties of shares: description, path", CheckRows<ShareWith>},
    {"numbers", CheckRows<hex2num>},
    {"manufacturers", CheckRows<getIDManufacturer>},
    {"product codes", CheckRows<getProductCode>},
    {"versions", CheckRows<getEDIDVersion>},
    {"descriptors: kind, text", CheckRows<KindAndText>},
    {"dates", CheckRows<DateOf>},
    {"names and serial numbers", CheckRows<NameAndSerial>}};

TEST(SectionTexts, AreReadAsExpected) {
  const TimeZone utc("UTC0");
  Json tables = DataOf("module/Inventory/texts.json");
  tables.update(DataOf("module/Inventory/edid.json"));
  EXPECT_EQ(tables.size(), std::size(TABLES));
  for (const auto& [name, check] : TABLES) {
    SCOPED_TRACE(name);
    check(tables[name]);
  }
  EXPECT_THROW(getDescriptor("00000"), std::out_of_range);
}

}  // namespace
}  // namespace Norvik::KOB
