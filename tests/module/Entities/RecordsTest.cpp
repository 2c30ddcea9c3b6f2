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

// Only locale "C" shows which of the two conversions a record uses: a text that goes through the
// locale is read back empty there.

template <class... T, class Action>
void ForEachOf(const testing::Types<T...>& /*types*/, Action action) {
  (action(T()), ...);
}

TEST(EntitiesTest, TextsSurviveLocaleCInSomeRecordsAndNotInTheOthers) {
  const ScopedLocale c("C");
  using Utf8Records = testing::Types<HardwareInfo, KeyboardInfo, GroupSettings, UserSettings,
                                     MonitorInfo, FeaturesInfo, NetworkDriveInfo>;
  ForEachOf(Utf8Records(), [](auto record) {
    Filler().FillRecord(record);
    EXPECT_TRUE(ReadBack<decltype(record)>(JsonText(record)) == record) << typeid(record).name();
  });
  using LocaleRecords =
      testing::Types<CdromInfo, ConfigurationInfo, PermissionInfo, PrinterInfo, RunCommandInfo,
                     ServiceInfo, SharedResourceInfo, SmBiosInfo, SmbSystemSlotInfo, VideoInfo>;
  ForEachOf(LocaleRecords(), [](auto record) {
    Filler().FillRecord(record);
    if constexpr (std::is_same_v<decltype(record), CdromInfo>) record.logicalDisks.clear();
    const std::string text = JsonText(record);
    EXPECT_NE(text.find("caf"), std::string::npos) << typeid(record).name();
    EXPECT_EQ(JsonText(ReadBack<decltype(record)>(text)).find("caf"), std::string::npos)
        << typeid(record).name();
  });
}

TEST(ConfigurationInfoTest, WhatComesFromCommunicationsIsNeitherWrittenNorCompared) {
  ConfigurationInfo configuration;
  configuration.communicationsNumber = 443;
  configuration.communicationsText = "server";
  EXPECT_TRUE(configuration == ConfigurationInfo());
  EXPECT_EQ(JsonText(configuration), JsonText(ConfigurationInfo()));
}

TEST(GeoLocationPointTest, PointsCloserThanTheToleranceAreEqual) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const GeoLocationPoint point;
  EXPECT_TRUE(point.IsZero());
  for (double GeoLocationPoint::*member :
       {&GeoLocationPoint::longitude, &GeoLocationPoint::latitude, &GeoLocationPoint::height,
        &GeoLocationPoint::acceleration}) {
    for (const auto& [by, isEqual] : {std::pair(0.000009, true),
                                      {1e-7, true},
                                      {0.00001, false},
                                      {-0.00001, false},
                                      {nan, false}}) {
      GeoLocationPoint moved;
      moved.*member = by;
      EXPECT_EQ(moved == point, isEqual) << by;
      EXPECT_EQ(moved != point, !isEqual) << by;
      EXPECT_FALSE(moved.IsZero()) << by;
    }
  }
}

TEST(GeoLocationPointTest, DigitsBeyondTheSixthAreLostSoThatThePointDiffers) {
  GeoLocationPoint point;
  point.longitude = -45.67891;
  const auto back = ReadBack<GeoLocationPoint>(JsonText(point));
  EXPECT_DOUBLE_EQ(back.longitude, -45.6789);
  EXPECT_TRUE(back != point);
}

TEST(CdromInfoTest, TheOrderOfLogicalDisksCountsAndThatOfFeaturesDoesNot) {
  CdromInfo drive;
  drive.features = {"CD", "DVD"};
  drive.logicalDisks.resize(2);
  drive.logicalDisks.front().device = "disk2s1";
  auto other = drive;
  other.features = {"DVD", "CD"};
  EXPECT_TRUE(other == drive);
  other.logicalDisks.reverse();
  EXPECT_TRUE(other != drive);
}

TEST(LocalUserInfoTest, AUserWithoutTheKeysIsEnabledAndLocked) {
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

TEST(SharedResourceInfoTest, PermissionsAreRequiredButMayBeNull) {
  EXPECT_THROW(ReadBack<SharedResourceInfo>("{\"name\":\"Public\"}"),
               boost::property_tree::ptree_bad_path);
  const auto empty = ReadBack<SharedResourceInfo>("{\"name\":\"Public\",\"permissions\":null}");
  EXPECT_EQ(empty.name, "Public");
  EXPECT_TRUE(empty.permissions.empty());
}

}  // namespace tests
