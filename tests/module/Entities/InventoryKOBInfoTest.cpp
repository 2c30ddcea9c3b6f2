#include "module/Entities/InventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>

#include "module/Inventories.h"
#include "support/Surroundings.h"

namespace tests {

using namespace Norvik::KOB;

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
  EXPECT_EQ(JsonText(back.device), JsonText(DeviceInfo()));
  back.device = inventory.device;
  EXPECT_EQ(JsonText(back), expected);
}

TEST(InventoryKOBInfoTest, TheTextDoesNotDependOnTheLocale) {
  const InventoryKOBInfo inventory = FilledInventory();
  const std::string text = JsonText(inventory);
  const ScopedLocale c("C");
  const CommaLocale comma;
  EXPECT_EQ(JsonText(inventory), text);
}

static_assert(std::has_virtual_destructor_v<InventoryKOBInfo>, "owned through this base");

}  // namespace tests
