#include "module/IncrementalInventory/Entities/DeletedRecord.h"

#include <boost/property_tree/ptree.hpp>
#include <memory>

#include "module/Entities/InventorySections.h"
#include "support/RecordSuite.h"

namespace Norvik::KOB {
namespace {

using namespace tests;

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

}  // namespace
}  // namespace Norvik::KOB
