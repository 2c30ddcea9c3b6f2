#include <boost/property_tree/ptree.hpp>

#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"
#include "common/records/SoftwareRegisteredInfo.h"
#include "support/RecordSuite.h"

namespace tests {

using namespace Norvik::Common;

using Records = testing::Types<DiskPartitionInfo, LogicalDiskInfo, MemoryInfo, NetworkAdapterInfo,
                               OperatingSystemInfo, PhysicalDiskInfo, ProcessorInfo, SetupInfo,
                               SmbMemoryDeviceInfo, SmbPortConnectorInfo, SoftwareRegisteredInfo>;
INSTANTIATE_TYPED_TEST_SUITE_P(CommonRecords, RecordSuite, Records, RecordName);

template <class T>
class LenientRecordTest : public testing::Test {};
TYPED_TEST_SUITE(LenientRecordTest, Records, RecordName);

TYPED_TEST(LenientRecordTest, ARecordSurvivesWhateverTheLocaleAndAnEmptyTreeGivesDefaults) {
  const CommaLocale comma;
  EXPECT_TRUE(ReadBack<TypeParam>(JsonText(Filled<TypeParam>())) == Filled<TypeParam>());
  EXPECT_TRUE(TypeParam(boost::property_tree::ptree()) == TypeParam());
}

TEST(RecordsTest, ASizeAboveTheSignedRangeIsNegativeInADocumentAndPlainInATree) {
  LogicalDiskInfo volume = Filled<LogicalDiskInfo>();
  volume.sizeBytes = 18446744073709551615u;
  EXPECT_NE(JsonText(volume).find("\"sizeBytes\":-1"), std::string::npos);
  EXPECT_EQ(ReadBack<LogicalDiskInfo>(JsonText(volume)).sizeBytes, volume.sizeBytes);
  const CommaLocale comma;
  const boost::property_tree::ptree tree = volume;
  EXPECT_EQ(tree.get<std::string>("sizeBytes"), "18446744073709551615");
  EXPECT_TRUE(LogicalDiskInfo(tree) == volume);
}

TEST(RecordsTest, DatesAreMillisecondsInADocumentCutToSecondsInMemoryAndMayBeMissing) {
  SoftwareRegisteredInfo software;
  software.installDate = 1577836800;
  EXPECT_NE(JsonText(software).find("\"installDate\":1577836800000"), std::string::npos);
  EXPECT_EQ(ReadBack<SoftwareRegisteredInfo>("{\"installDate\":1577836800999}").installDate,
            1577836800);
  const std::string system = JsonText(OperatingSystemInfo());
  EXPECT_NE(system.find("\"installDate\":null"), std::string::npos);
  EXPECT_FALSE(ReadBack<OperatingSystemInfo>(system).installDate);
}

TEST(RecordsTest, AValueThatDoesNotConvertTakesTheDefault) {
  const auto port = ReadBack<SmbPortConnectorInfo>("{\"typeCode\":300,\"name\":\"J1\"}");
  EXPECT_EQ(port.typeCode, 0);
  EXPECT_EQ(port.name, "J1");
  EXPECT_EQ(ReadBack<SmbPortConnectorInfo>("{\"typeCode\":255}").typeCode, 255);
}

}  // namespace tests
