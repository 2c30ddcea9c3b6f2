#include "module/IncrementalInventory/Entities/DeletedRecords.h"

#include <boost/property_tree/ptree.hpp>
#include <memory>

#include "module/Entities/InventorySections.h"
#include "support/RecordSuite.h"

namespace Norvik::KOB {
namespace {

using namespace tests;

template <class Deleted>
std::string KeysOfDeleted() {
  return KeysOf(Deleted(typename Deleted::Source()));
}

TEST(DeletedRecordsTest, EachWritesItsKeysOfTheWireFormatEvenIfAllIsEmpty) {
  const std::pair<std::string, std::string> rows[] = {
      {KeysOfDeleted<CdromDeletedInfo>(), "manufacturer mediaType model pnpDeviceId serial"},
      {KeysOfDeleted<FeaturesDeletedInfo>(), "version"},
      {KeysOfDeleted<HardwareDeletedInfo>(), "manufacturer name pnpDeviceId type"},
      {KeysOfDeleted<KeyboardDeletedInfo>(), "description manufacturer pnpDeviceId"},
      {KeysOfDeleted<LocalUserDeletedGroupInfo>(), "name"},
      {KeysOfDeleted<LocalUserDeletedUserInfo>(), "userName"},
      {KeysOfDeleted<MonitorDeletedInfo>(), "manufacturer model name serial"},
      {KeysOfDeleted<NetworkAdapterDeletedInfo>(), "manufacturer name type"},
      {KeysOfDeleted<NetworkDriveDeletedInfo>(), "path unit"},
      {KeysOfDeleted<PhysicalDiskDeletedInfo>(), "manufacturer mediaType model pnpDeviceId serial"},
      {KeysOfDeleted<PrinterDeletedInfo>(), "driverName manufacturer name"},
      {KeysOfDeleted<ProcessorDeletedInfo>(), "index manufacturer model"},
      {KeysOfDeleted<RunCommandDeletedInfo>(), "command name path"},
      {KeysOfDeleted<ServiceDeletedInfo>(), "displayName name"},
      {KeysOfDeleted<SharedResourceDeletedInfo>(), "name"},
      {KeysOfDeleted<SmbMemoryDeviceDeletedInfo>(), "manufacturer model name serial"},
      {KeysOfDeleted<SmbPortConnectorDeletedInfo>(), "erd name type"},
      {KeysOfDeleted<SmbSystemSlotDeletedInfo>(), "slotId"},
      {KeysOfDeleted<SoftwareDeletedInfo>(), "name productCode softwareKey version"},
      {KeysOfDeleted<VideoDeletedInfo>(), "driverName manufacturer name"},
  };
  for (const auto& [keys, expected] : rows) EXPECT_EQ(keys, expected);
}

TEST(DeletedRecordsTest, EachKeepsTheTextOfItsSourceInAnyLocaleAndWhenTheSourceHasGone) {
  const ScopedLocale c("C");
  ForEachSection([](const auto& section) {
    using Section = std::decay_t<decltype(section)>;
    if constexpr (Section::isList) {
      using Record = typename Section::Value::value_type;
      auto source = std::make_unique<Record>(Filled<Record>());
      const auto fields = ParseJson(JsonText(*source));
      const DeletedRecordOf<Record> deleted(*source);
      source.reset();
      for (const auto& [key, kept] : ParseJson(JsonText(deleted))) {
        const bool isVersion = std::is_same_v<Record, VideoInfo> && key == "driverName";
        EXPECT_EQ(kept.data(), fields.template get<std::string>(isVersion ? "version" : key))
            << section.key << " " << key;
      }
    }
  });
}

TEST(DeletedRecordsTest, ADeletedVideoCardTellsItsVersionAsItsDriverName) {
  VideoInfo card;
  card.driverName = "nv";
  card.version = "1.2";
  card.name = "Card";
  EXPECT_EQ(JsonText(VideoDeletedInfo(card)),
            R"({"driverName":"1.2","manufacturer":"","name":"Card"})");
}

TEST(DeletedRecordsTest, NumbersStayNumbers) {
  SmbSystemSlotInfo slot;
  slot.slotId = -1;
  EXPECT_EQ(JsonText(SmbSystemSlotDeletedInfo(slot)), R"({"slotId":-1})");
  Common::ProcessorInfo processor;
  processor.index = 4;
  EXPECT_EQ(JsonText(ProcessorDeletedInfo(processor)),
            R"({"index":4,"manufacturer":"","model":""})");
}

TEST(DeletedRecordsTest, BytesThatAreNoUtf8AreEmptyByWayOfAWideTextAndEscapedOtherwise) {
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
