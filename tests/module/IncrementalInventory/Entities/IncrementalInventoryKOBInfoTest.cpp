#include "module/IncrementalInventory/Entities/IncrementalInventoryKOBInfo.h"

#include "module/Inventories.h"

namespace Norvik::KOB {
namespace {

using namespace tests;
using Software = std::vector<Common::SoftwareRegisteredInfo>;

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
