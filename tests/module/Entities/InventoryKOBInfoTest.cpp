#include "module/Entities/InventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>

#include "module/Inventories.h"
#include "support/CommaLocale.h"

namespace tests {

using namespace Norvik::KOB;
using boost::property_tree::ptree;
using boost::property_tree::ptree_bad_path;

TEST(InventoryKOBInfoTest, AnEmptyInventoryHasEverySectionAndNullsForListsAndLocation) {
  const ptree document = ParseJson(JsonText(InventoryKOBInfo()));
  EXPECT_EQ(document.size(), 27u);
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    const bool isNull = Section::isList || Section::kind == SectionKind::Location;
    EXPECT_EQ(document.get<std::string>(section.key), isNull ? "null" : "") << section.key;
  });
}

TEST(InventoryKOBInfoTest, ADocumentWithARecordInEachListHasTheTextOfTheWireFormat) {
  InventoryKOBInfo inventory;
  ForEachSection([&](const auto& section) {
    if constexpr (std::decay_t<decltype(section)>::isList) section.In(inventory).resize(1);
  });
  inventory.configuration.profileId = 7;
  inventory.configuration.agentVersion = "9.24";
  inventory.device.name = "mac-07";
  inventory.location.latitude = 41.25;
  inventory.firmware.date = 1577836800;
  inventory.cdroms.front().features = {"DVD", "CD"};
  inventory.monitors.front().serial = wxString::FromUTF8(std::string("A1\0B", 4));
  inventory.systemSlots.front().slotId = static_cast<int>(0xFFFFFFFFu);
  inventory.localUsers.groups.front().name = "staff";
  inventory.localUsers.groups.front().users = {"root", "ana"};
  inventory.sharedResources.front().permissions.resize(1);
  inventory.sharedResources.front().permissions.front().user = "everyone";
  inventory.videoCards.front().size = 1536;
  inventory.software.front().installDate = 1577836800;
  const std::string expected =
      GoldenText(NORVIK_SOURCE_DIR "/tests/module/Entities/small-document.json");
  EXPECT_EQ(JsonText(inventory), expected);
  auto back = ReadBack<InventoryKOBInfo>(expected);
  back.device = inventory.device;
  EXPECT_EQ(JsonText(back), expected);
}

TEST(InventoryKOBInfoTest, AFilledInventoryComesBackButForTheDeviceAndTheIdsOfDrives) {
  const ScopedLocale utf8("C.UTF-8");
  const InventoryKOBInfo inventory = FilledInventory();
  const std::string text = JsonText(inventory);
  EXPECT_EQ(text.find("null"), std::string::npos);
  auto back = ReadBack<InventoryKOBInfo>(text);
  EXPECT_EQ(JsonText(back.device), JsonText(DeviceInfo()));
  EXPECT_EQ(back.networkDrives.front().id, 0u);
  EXPECT_FALSE(back.secondFirmware);
  back.device = inventory.device;
  EXPECT_EQ(JsonText(back), text);
}

TEST(InventoryKOBInfoTest, TheTextDoesNotDependOnTheLocale) {
  const InventoryKOBInfo inventory = FilledInventory();
  const std::string text = JsonText(inventory);
  const ScopedLocale c("C");
  const CommaLocale comma;
  EXPECT_EQ(JsonText(inventory), text);
}

TEST(InventoryKOBInfoTest, AMissingSectionIsAnErrorExceptTheDevice) {
  const ptree whole = ParseJson(JsonText(InventoryKOBInfo()));
  for (const auto& [key, section] : whole) {
    ptree partial = whole;
    partial.erase(key);
    if (key == "device") {
      EXPECT_NO_THROW(InventoryKOBInfo{partial});
    } else {
      EXPECT_THROW(InventoryKOBInfo{partial}, ptree_bad_path) << key;
    }
  }
}

TEST(InventoryKOBInfoTest, UnknownKeysAndWrongFieldsAreForgiven) {
  ptree document = ParseJson(JsonText(FilledInventory()));
  document.put("novelty", 1);
  document.put("bios.romSize", "many");
  document.put_child("service", ParseJson("{\"service\":[{}]}").get_child("service"));
  const InventoryKOBInfo back(document);
  EXPECT_EQ(back.firmware.romSize, 0);
  EXPECT_EQ(back.services.size(), 1u);
  EXPECT_EQ(back.services.front().name, "");
}

static_assert(std::has_virtual_destructor_v<InventoryKOBInfo>, "owned through this base");

}  // namespace tests
