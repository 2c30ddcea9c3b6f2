#include "module/Entities/InventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>
#include <fstream>
#include <memory>

#include "module/Entities/InventorySections.h"
#include "support/CommaLocale.h"
#include "support/RecordSuite.h"

namespace tests {

using namespace Norvik::KOB;
using boost::property_tree::ptree;
using boost::property_tree::ptree_bad_path;

InventoryKOBInfo FilledInventory() {
  InventoryKOBInfo inventory;
  Filler filler;
  ForEachSection([&](const auto& section) { filler.Fill(section.In(inventory)); });
  return inventory;
}

TEST(InventoryKOBInfoTest, AnEmptyInventoryHasEverySectionAndNullsForListsAndLocation) {
  const ptree document = ParseJson(JsonText(InventoryKOBInfo()));
  std::string nulls;
  std::string objects;
  for (const auto& [key, section] : document) {
    EXPECT_EQ(section.data(), section.empty() ? "null" : "") << key;
    (section.empty() ? nulls : objects) += key + " ";
  }
  EXPECT_EQ(nulls,
            "boards cdrom disk displays drivers features group keyboard location memorySlot "
            "networkAdapter portConnectors printer processorSlot service sharedResources software "
            "startupCommand unitMappings user videoCards ");
  EXPECT_EQ(objects, "agentConfiguration bios device memory os setup ");
}

TEST(InventoryKOBInfoTest, ASmallDocumentHasTheTextOfTheWireFormat) {
  InventoryKOBInfo inventory;
  inventory.configuration.profileId = 7;
  inventory.configuration.agentVersion = "9.24";
  inventory.device.name = "mac-07";
  inventory.location.latitude = 41.25;
  inventory.localUsers.groups.resize(1);
  inventory.localUsers.groups.front().name = "staff";
  inventory.localUsers.groups.front().users = {"ana"};
  inventory.localUsers.users.resize(1);
  inventory.localUsers.users.front().userName = "ana";
  inventory.sharedResources.resize(1);
  inventory.sharedResources.front().permissions.resize(1);
  inventory.sharedResources.front().permissions.front().user = "everyone";
  inventory.videoCards.resize(1);
  inventory.videoCards.front().size = 1536;
  inventory.software.resize(1);
  inventory.software.front().name = "Editor";
  inventory.software.front().installDate = 1577836800;
  std::ifstream golden(NORVIK_SOURCE_DIR "/tests/module/Entities/small-document.json");
  std::string expected;
  for (std::string line; std::getline(golden, line);) expected += line;
  EXPECT_EQ(json::JSON(inventory).strUgly(), expected);
}

template <class T>
bool SameContent(const T& left, const T& right) {
  if constexpr (json::HasFields<T>::value) {
    return left == right;
  } else {
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
  }
}

TEST(InventoryKOBInfoTest, AFilledInventoryComesBackSectionBySection) {
  const ScopedLocale utf8("C.UTF-8");
  const InventoryKOBInfo inventory = FilledInventory();
  const std::string text = JsonText(inventory);
  EXPECT_EQ(text.find("null"), std::string::npos);
  const auto back = ReadBack<InventoryKOBInfo>(text);
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::kind != SectionKind::Device) {
      EXPECT_TRUE(SameContent(section.In(back), section.In(inventory))) << section.key;
    }
  });
}

TEST(InventoryKOBInfoTest, TheDeviceAndTheIdsOfDrivesAreNotReadBack) {
  const InventoryKOBInfo back = ReadBack<InventoryKOBInfo>(JsonText(FilledInventory()));
  EXPECT_EQ(JsonText(back.device), JsonText(DeviceInfo()));
  EXPECT_EQ(back.networkDrives.front().id, 0u);
  EXPECT_FALSE(back.secondFirmware);
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
  ASSERT_EQ(whole.size(), 27u);
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

struct CountingInventory : InventoryKOBInfo {
  explicit CountingInventory(int& destroyed) : destroyed_(&destroyed) {}
  ~CountingInventory() override { ++*destroyed_; }
  int* destroyed_;
};

TEST(InventoryKOBInfoTest, ADerivedInventoryIsDestroyedThroughItsBase) {
  int destroyed = 0;
  std::unique_ptr<InventoryKOBInfo> inventory = std::make_unique<CountingInventory>(destroyed);
  inventory.reset();
  EXPECT_EQ(destroyed, 1);
}

}  // namespace tests
