#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"

#include <boost/property_tree/ptree.hpp>

#include "module/Inventories.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using Software = std::vector<Common::SoftwareRegisteredInfo>;

TEST(DeletedRecordTest, EachKeepsTheTextOfItsSourceInAnyLocaleAndAfterItIsDestroyed) {
  const ScopedLocale c("C");
  ForEachSection([](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::isList) {
      using Record = typename Section::Value::value_type;
      auto source = std::make_unique<Record>(Filled<Record>());
      const auto fields = ParseJson(JsonText(*source));
      const DeletedRecord<Record> deleted(*source);
      source.reset();
      for (const auto& [key, kept] : ParseJson(JsonText(deleted))) {
        // A deleted video card has its version under the key of its driver's name.
        const bool isVersion = std::is_same_v<Record, VideoInfo> && key == "driverName";
        EXPECT_EQ(kept.data(), fields.template get<std::string>(isVersion ? "version" : key))
            << section.key << " " << key;
      }
    }
  });
}

TEST(DeletedRecordTest, AMemoryModuleHasItsKeysThoughNoDocumentHoldsIt) {
  EXPECT_EQ(JsonText(SmbMemoryDeviceDeletedInfo(Common::SmbMemoryDeviceInfo())),
            R"({"manufacturer":"","model":"","name":"","serial":""})");
}

TEST(DeletedRecordTest, InvalidUtf8IsEmptyByWayOfAWideTextAndEscapedOtherwise) {
  FeaturesInfo feature;
  feature.version = "caf\xE9";
  EXPECT_EQ(JsonText(FeaturesDeletedInfo(feature)), R"({"version":""})");
  Common::ProcessorInfo processor;
  processor.manufacturer = processor.model = "caf\xE9";
  EXPECT_EQ(JsonText(ProcessorDeletedInfo(processor)),
            R"({"index":0,"manufacturer":"","model":""})");
  NetworkDriveInfo drive;
  drive.path = "caf\xE9";
  EXPECT_EQ(JsonText(NetworkDriveDeletedInfo(drive)), R"({"path":"caf\u00e9","unit":""})");
}

TEST(IncrementalInventoryKOBInfoTest, ADocumentWithADeletionInEachListHasTheTextOfTheWireFormat) {
  IncrementalInventoryKOBInfo changes;
  changes.configuration.profileId = 7;  // an inherited single record is not used
  changes.device.name = "mac-07";       // the device alone is no change
  EXPECT_TRUE(json::JSON(changes).IsNull());
  ForEachSection([&](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::isList) {
      changes.Deleted<typename Section::Value>().emplace_back(
          typename Section::Value::value_type());
    }
  });
  Common::SoftwareRegisteredInfo editor;
  editor.name = "Editor";
  editor.version = "2.0";
  editor.installDate = 1577836800;
  changes.services.resize(1);
  changes.services.front().name = "backup";
  changes.localUsers.groups.resize(1);
  changes.localUsers.groups.front().users = {"ana"};
  changes.Deleted<Software>().emplace_back(editor);
  changes.Updated<Software>().push_back(editor);
  changes.Updated<ConfigurationInfo>().emplace();
  changes.Updated<ConfigurationInfo>()->agentVersion = "9.24";
  EXPECT_EQ(JsonText(changes),
            GoldenText(NORVIK_SOURCE_DIR
                       "/tests/module/IncrementalInventory/Entities/small-document.json"));
}

}  // namespace
}  // namespace Norvik::KOB
