#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>
#include <fstream>

#include "support/RecordSuite.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using MemorySlots = std::list<Common::SmbMemoryDeviceInfo>;
using Software = std::vector<Common::SoftwareRegisteredInfo>;

TEST(IncrementalInventoryKOBInfoTest, WithoutChangesItIsNullWhateverTheDevice) {
  IncrementalInventoryKOBInfo changes;
  changes.device.name = "mac-07";
  changes.configuration.profileId = 7;  // an inherited single record tells nothing either
  EXPECT_TRUE(json::JSON(changes).IsNull());
  EXPECT_TRUE(changes.CreateInventorySection().IsNull());
  EXPECT_TRUE(changes.DeleteInventorySection().IsNull());
  EXPECT_TRUE(changes.UpdateInventorySection().IsNull());
}

TEST(IncrementalInventoryKOBInfoTest, CreatedAndDeletedMemorySlotsAreKeptButCountForNothing) {
  IncrementalInventoryKOBInfo changes;
  changes.memorySlots.resize(1);
  changes.Deleted<MemorySlots>().emplace_back(Common::SmbMemoryDeviceInfo());
  EXPECT_TRUE(json::JSON(changes).IsNull());
  changes.Updated<MemorySlots>().resize(1);
  const auto document = ParseJson(JsonText(changes));
  EXPECT_EQ(document.get<std::string>("create"), "null");
  EXPECT_EQ(document.get<std::string>("delete"), "null");
  EXPECT_EQ(document.get_child("update.memorySlot").size(), 1u);
}

TEST(IncrementalInventoryKOBInfoTest, ADocumentWithOneChangeHasAllFourKeys) {
  IncrementalInventoryKOBInfo deleted;
  deleted.Deleted<std::list<SharedResourceInfo>>().emplace_back(SharedResourceInfo());
  EXPECT_EQ(JsonText(deleted),
            R"({"create":null,"delete":{"sharedResources":[{"name":""}]},"device":)" +
                JsonText(DeviceInfo()) + R"(,"update":null})");
  IncrementalInventoryKOBInfo created;
  created.features.resize(1);
  EXPECT_EQ(JsonText(created),
            R"({"create":{"features":[{"name":"","version":""}]},"delete":null,"device":)" +
                JsonText(DeviceInfo()) + R"(,"update":null})");
}

TEST(IncrementalInventoryKOBInfoTest, AnUpdateToTheZeroPointIsAnObjectOfZeros) {
  IncrementalInventoryKOBInfo changes;
  changes.Updated<GeoLocationPoint>() = GeoLocationPoint();
  EXPECT_EQ(changes.UpdateInventorySection().strUgly(),
            R"({"location":{"acceleration":0,"height":0,"latitude":0,"longitude":0}})");
}

std::string SectionsIn(const json::JSON& part) {
  std::string keys;
  for (const auto& [key, section] : ParseJson(part.strUgly())) {
    keys += (keys.empty() ? "" : " ") + key;
  }
  return keys;
}

TEST(IncrementalInventoryKOBInfoTest, EachPartHasTheSectionsOfTheWireFormat) {
  IncrementalInventoryKOBInfo changes;
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    using Value = typename Section::Value;
    if constexpr (Section::isList) {
      section.In(changes).resize(1);
      changes.Deleted<Value>().emplace_back(typename Value::value_type());
      changes.Updated<Value>().resize(1);
    } else if constexpr (Section::kind != SectionKind::Device) {
      changes.Updated<Value>().emplace();
    }
  });
  const std::string lists =
      "boards cdrom disk displays drivers features group keyboard networkAdapter portConnectors "
      "printer processorSlot service sharedResources software startupCommand unitMappings user "
      "videoCards";
  EXPECT_EQ(SectionsIn(changes.CreateInventorySection()), lists);
  EXPECT_EQ(SectionsIn(changes.DeleteInventorySection()), lists);
  EXPECT_EQ(SectionsIn(changes.UpdateInventorySection()),
            "agentConfiguration bios boards cdrom disk displays drivers features group keyboard "
            "location memory memorySlot networkAdapter os portConnectors printer processorSlot "
            "service setup sharedResources software startupCommand unitMappings user videoCards");
}

TEST(IncrementalInventoryKOBInfoTest, ASmallDocumentHasTheTextOfTheWireFormat) {
  Common::SoftwareRegisteredInfo editor;
  editor.name = "Editor";
  editor.version = "2.0";
  editor.installDate = 1577836800;
  IncrementalInventoryKOBInfo changes;
  changes.device.name = "mac-07";
  changes.services.resize(1);
  changes.services.front().name = "backup";
  changes.localUsers.groups.resize(1);
  changes.localUsers.groups.front().users = {"ana"};
  changes.Deleted<Software>().emplace_back(editor);
  changes.Deleted<std::list<LocalUserInfo::UserSettings>>().emplace_back(
      LocalUserInfo::UserSettings());
  changes.Updated<Software>().push_back(editor);
  changes.Updated<ConfigurationInfo>().emplace();
  changes.Updated<ConfigurationInfo>()->agentVersion = "9.24";
  std::ifstream golden(NORVIK_SOURCE_DIR
                       "/tests/module/IncrementalInventory/Entities/small-document.json");
  std::string expected;
  for (std::string line; std::getline(golden, line);) expected += line;
  EXPECT_EQ(JsonText(changes), expected);
}

}  // namespace
}  // namespace Norvik::KOB
