#include "module/Inventory/Edid.h"

#include <gtest/gtest.h>
#include <time.h>

#include <stdexcept>

#include "support/Cases.h"
#include "support/TimeZone.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;

std::string DateOf(const std::string& text) {
  const auto seconds = static_cast<::time_t>(static_cast<std::uint32_t>(getDate(text)));
  char day[16];
  ::strftime(day, sizeof(day), "%Y-%m-%d", ::gmtime(&seconds));
  return day;
}

Json KindAndText(const std::string& text) {
  const Descriptor descriptor = getDescriptor(text);
  return {static_cast<int>(descriptor.kind), Bytes(descriptor.text)};
}

TEST(Edid, IsReadFieldByField) {
  const TimeZone utc("UTC0");
  const Json tables = DataOf("module/Inventory/edid.json");
  ExpectRows(tables["numbers"], hex2num);
  ExpectRows(tables["manufacturers"], getIDManufacturer);
  ExpectRows(tables["product codes"], getProductCode);
  ExpectRows(tables["versions"], getEDIDVersion);
  ExpectRows(tables["descriptors: kind, text"], KindAndText);
  ExpectRows(tables["dates"], DateOf);
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

}  // namespace
}  // namespace Norvik::KOB
