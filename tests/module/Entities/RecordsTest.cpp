#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/property_tree/ptree.hpp>

#include "module/Entities/InventoryKOBInfo.h"
#include "module/Entities/SystemInfo.h"
#include "support/RecordSuite.h"

namespace tests {

using namespace Norvik::KOB;
using boost::property_tree::ptree;
using GroupSettings = LocalUserInfo::GroupSettings;
using UserSettings = LocalUserInfo::UserSettings;

using ComparedRecords =
    testing::Types<CdromInfo, ConfigurationInfo, FeaturesInfo, GeoLocationPoint, GroupSettings,
                   HardwareInfo, KeyboardInfo, MonitorInfo, NetworkDriveInfo, PermissionInfo,
                   PrinterInfo, RunCommandInfo, ServiceInfo, SharedResourceInfo, SmBiosInfo,
                   SmbSystemSlotInfo, UserSettings, VideoInfo>;
INSTANTIATE_TYPED_TEST_SUITE_P(ModuleRecords, RecordSuite, ComparedRecords, RecordName);

TEST(EntitiesTest, EachRecordWritesItsKeysOfTheWireFormat) {
  const std::pair<std::string, std::string> rows[] = {
      {KeysOf(CdromInfo()),
       "busType features logicalDisk manufacturer mediaType model pnpDeviceId serial"},
      {KeysOf(ConfigurationInfo()), "agentVersion profileId"},
      {KeysOf(DeviceInfo()),
       "alias assetDate description domain guid name server type userName workGroup"},
      {KeysOf(FeaturesInfo()), "name version"},
      {KeysOf(GeoLocationPoint()), "acceleration height latitude longitude"},
      {KeysOf(GroupSettings()), "description group name user"},
      {KeysOf(HardwareInfo()), "driverError manufacturer name pnpDeviceId state type"},
      {KeysOf(KeyboardInfo()), "country description language layout manufacturer pnpDeviceId type"},
      {KeysOf(MonitorInfo()), "date manufacturer model name revision serial"},
      {KeysOf(NetworkDriveInfo()), "path server unit"},
      {KeysOf(PermissionInfo()), "access type user"},
      {KeysOf(PrinterInfo()), "description driverName manufacturer name port"},
      {KeysOf(RunCommandInfo()), "command name path type"},
      {KeysOf(ServiceInfo()), "command description displayName name startupMode state"},
      {KeysOf(SharedResourceInfo()), "description name path permissions type"},
      {KeysOf(SmBiosInfo()), "date manufacturer romSize version"},
      {KeysOf(SmbSystemSlotInfo()), "description name slotId type"},
      {KeysOf(UserSettings()),
       "description enabled fullUserName locked passwordChange passwordExpire passwordRequired "
       "userName"},
      {KeysOf(VideoInfo()),
       "chipset dac date driverName manufacturer name size version versionBios"},
  };
  for (const auto& [keys, expected] : rows) EXPECT_EQ(keys, expected);
}

TEST(EntitiesTest, EachListRecordIsIdentifiedByOneField) {
  EXPECT_EQ(IdentityOf<CdromInfo>(), "pnpDeviceId");
  EXPECT_EQ(IdentityOf<FeaturesInfo>(), "version");
  EXPECT_EQ(IdentityOf<GroupSettings>(), "name");
  EXPECT_EQ(IdentityOf<HardwareInfo>(), "pnpDeviceId");
  EXPECT_EQ(IdentityOf<KeyboardInfo>(), "pnpDeviceId");
  EXPECT_EQ(IdentityOf<MonitorInfo>(), "model");
  EXPECT_EQ(IdentityOf<NetworkDriveInfo>(), "unit");
  EXPECT_EQ(IdentityOf<PrinterInfo>(), "name");
  EXPECT_EQ(IdentityOf<RunCommandInfo>(), "name");
  EXPECT_EQ(IdentityOf<ServiceInfo>(), "name");
  EXPECT_EQ(IdentityOf<SharedResourceInfo>(), "name");
  EXPECT_EQ(IdentityOf<SmbSystemSlotInfo>(), "slotId");
  EXPECT_EQ(IdentityOf<UserSettings>(), "userName");
  EXPECT_EQ(IdentityOf<VideoInfo>(), "name");
}

// Which of the two conversions a record takes shows under locale "C" alone: what goes through the
// locale comes back empty there.

using Utf8Records = testing::Types<HardwareInfo, KeyboardInfo, GroupSettings, UserSettings,
                                   MonitorInfo, FeaturesInfo, NetworkDriveInfo>;
template <class T>
class Utf8RecordTest : public testing::Test {};
TYPED_TEST_SUITE(Utf8RecordTest, Utf8Records, RecordName);

TYPED_TEST(Utf8RecordTest, TextsSurviveLocaleC) {
  const ScopedLocale c("C");
  const auto record = Filled<TypeParam>();
  EXPECT_TRUE(ReadBack<TypeParam>(JsonText(record)) == record);
}

using LocaleRecords =
    testing::Types<CdromInfo, ConfigurationInfo, PermissionInfo, PrinterInfo, RunCommandInfo,
                   ServiceInfo, SharedResourceInfo, SmBiosInfo, SmbSystemSlotInfo, VideoInfo>;
template <class T>
class LocaleRecordTest : public testing::Test {};
TYPED_TEST_SUITE(LocaleRecordTest, LocaleRecords, RecordName);

TYPED_TEST(LocaleRecordTest, NoAccentedTextSurvivesLocaleC) {
  const ScopedLocale c("C");
  auto record = Filled<TypeParam>();
  if constexpr (std::is_same_v<TypeParam, CdromInfo>) record.logicalDisks.clear();
  const std::string text = JsonText(record);
  EXPECT_NE(text.find("caf"), std::string::npos);
  EXPECT_EQ(JsonText(ReadBack<TypeParam>(text)).find("caf"), std::string::npos);
}

TEST(DeviceInfoTest, AnEmptyDeviceHasAllItsKeysAndAFilledOneComesBack) {
  EXPECT_EQ(JsonText(DeviceInfo()),
            "{\"alias\":\"\",\"assetDate\":0,\"description\":\"\",\"domain\":\"\",\"guid\":\"\","
            "\"name\":\"\",\"server\":\"\",\"type\":0,\"userName\":\"\",\"workGroup\":\"\"}");
  auto device = Filled<DeviceInfo>();
  device.type = 255;
  device.assetDate = 1767225600123;
  const auto back = ReadBack<DeviceInfo>(JsonText(device));
  EXPECT_EQ(JsonText(back), JsonText(device));
  EXPECT_EQ(back.type, 255);
}

TEST(ConfigurationInfoTest, WhatComesFromCommunicationsIsNeitherWrittenNorCompared) {
  ConfigurationInfo configuration;
  configuration.communicationsNumber = 443;
  configuration.communicationsText = "server";
  EXPECT_TRUE(configuration == ConfigurationInfo());
  EXPECT_EQ(JsonText(configuration), JsonText(ConfigurationInfo()));
}

TEST(GeoLocationPointTest, PointsCloserThanTheToleranceAreEqual) {
  GeoLocationPoint point;
  for (double GeoLocationPoint::*member :
       {&GeoLocationPoint::longitude, &GeoLocationPoint::latitude, &GeoLocationPoint::height,
        &GeoLocationPoint::acceleration}) {
    GeoLocationPoint moved;
    moved.*member = 0.000009;
    EXPECT_TRUE(moved == point);
    moved.*member = 0.00001;
    EXPECT_FALSE(moved == point);
    moved.*member = -0.00001;
    EXPECT_TRUE(moved != point);
    moved.*member = std::numeric_limits<double>::quiet_NaN();
    EXPECT_FALSE(moved == moved);
    EXPECT_FALSE(moved.IsZero());
    moved.*member = 0.0000001;
    EXPECT_TRUE(moved == point);
    EXPECT_FALSE(moved.IsZero());
  }
  EXPECT_TRUE(point.IsZero());
}

TEST(GeoLocationPointTest, DigitsBeyondTheSixthAreLostSoThatThePointDiffers) {
  GeoLocationPoint point;
  point.longitude = -45.67891;
  const auto back = ReadBack<GeoLocationPoint>(JsonText(point));
  EXPECT_DOUBLE_EQ(back.longitude, -45.6789);
  EXPECT_TRUE(back != point);
}

TEST(SmBiosInfoTest, TheDateIsMillisecondsInTheDocument) {
  SmBiosInfo firmware;
  firmware.date = 1577836800;
  EXPECT_NE(JsonText(firmware).find("\"date\":1577836800000"), std::string::npos);
  EXPECT_EQ(ReadBack<SmBiosInfo>(JsonText(firmware)).date, 1577836800);
}

TEST(CdromInfoTest, FeaturesAreASetAndLogicalDisksAreAList) {
  CdromInfo drive;
  drive.features = {"CD", "DVD"};
  drive.logicalDisks.resize(2);
  drive.logicalDisks.front().device = "disk2s1";
  auto other = drive;
  other.features = {"DVD", "CD"};
  EXPECT_TRUE(other == drive);
  EXPECT_NE(JsonText(drive).find("\"features\":[\"CD\",\"DVD\"]"), std::string::npos);
  other.logicalDisks.reverse();
  EXPECT_TRUE(other != drive);
}

TEST(LocalUserInfoTest, MembersAreAnOrderedListOfNames) {
  GroupSettings group;
  EXPECT_EQ(JsonText(group), "{\"description\":\"\",\"group\":null,\"name\":\"\",\"user\":null}");
  group.users = {"root", "ana"};
  EXPECT_NE(JsonText(group).find("\"user\":[{\"name\":\"root\"},{\"name\":\"ana\"}]"),
            std::string::npos);
  GroupSettings other = group;
  other.users.reverse();
  EXPECT_TRUE(other != group);
}

TEST(LocalUserInfoTest, AUserOfWhomADocumentDoesNotTellIsEnabledAndLocked) {
  const UserSettings user{ptree()};
  EXPECT_TRUE(user.enabled);
  EXPECT_TRUE(user.locked);
  EXPECT_FALSE(user.passwordChange || user.passwordExpire || user.passwordRequired);
  const auto read = ReadBack<UserSettings>("{\"enabled\":false,\"locked\":0}");
  EXPECT_FALSE(read.enabled || read.locked);
}

TEST(LocalUserInfoTest, TheContainerItselfIsNull) {
  LocalUserInfo users;
  users.users.resize(1);
  EXPECT_TRUE(json::JSON(users).IsNull());
}

TEST(NetworkDriveInfoTest, TheIdIsKeptOutOfDocumentsAndComparison) {
  NetworkDriveInfo drive;
  drive.id = 7;
  drive.unit = "/Volumes/share";
  EXPECT_TRUE(drive == ReadBack<NetworkDriveInfo>(JsonText(drive)));
  EXPECT_EQ(ReadBack<NetworkDriveInfo>(JsonText(drive)).id, 0u);
}

TEST(NetworkDriveInfoTest, AnArchiveCarriesTheFourFieldsInOrder) {
  NetworkDriveInfo drive;
  drive.id = 18446744073709551615u;
  drive.unit = "Z:";
  drive.path = "//server/share one";
  drive.server = "server";
  std::stringstream stream;
  boost::archive::text_oarchive(stream, boost::archive::no_header)
      << static_cast<const NetworkDriveInfo&>(drive);
  EXPECT_EQ(stream.str(), "0 0 18446744073709551615 2 Z: 18 //server/share one 6 server\n");
  NetworkDriveInfo loaded;
  boost::archive::text_iarchive(stream, boost::archive::no_header) >> loaded;
  EXPECT_EQ(loaded.id, drive.id);
  EXPECT_TRUE(loaded == drive);
}

TEST(SharedResourceInfoTest, PermissionsMustStandInTheDocumentThoughTheyMayBeNull) {
  EXPECT_THROW(ReadBack<SharedResourceInfo>("{\"name\":\"Public\"}"),
               boost::property_tree::ptree_bad_path);
  const auto empty = ReadBack<SharedResourceInfo>("{\"name\":\"Public\",\"permissions\":null}");
  EXPECT_EQ(empty.name, "Public");
  EXPECT_TRUE(empty.permissions.empty());
}

TEST(SmbSystemSlotInfoTest, AnUnknownSlotIsWrittenAsMinusOne) {
  SmbSystemSlotInfo slot;
  slot.slotId = static_cast<int>(0xFFFFFFFFu);
  EXPECT_NE(JsonText(slot).find("\"slotId\":-1"), std::string::npos);
  EXPECT_EQ(ReadBack<SmbSystemSlotInfo>(JsonText(slot)).slotId, -1);
}

TEST(MonitorInfoTest, TextsKeepEmbeddedNuls) {
  MonitorInfo monitor;
  monitor.serial = wxString::FromUTF8(std::string("A1\0B", 4));
  EXPECT_NE(JsonText(monitor).find("\"serial\":\"A1\\u0000B\""), std::string::npos);
  EXPECT_TRUE(ReadBack<MonitorInfo>(JsonText(monitor)) == monitor);
}

}  // namespace tests
