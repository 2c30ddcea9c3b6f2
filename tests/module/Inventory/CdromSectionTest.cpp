#include "module/Inventory/CdromSection.h"

#include <gmock/gmock.h>

#include <string>

#include "common/text/Text.h"
#include "platform/compat/LiveObjects.h"
#include "support/FixedFilesLock.h"
#include "support/MacRecording.h"

namespace {

using namespace Norvik::Tests;
using namespace Norvik::KOB;
using Norvik::Common::ToUtf8;
using testing::ElementsAre;
using testing::IsEmpty;

const Keys DRIVE = {{"Model", Text("EXAMPLE DVD-R   X1          ")},
                    {"Serial Number", Text("   Q0001")},
                    {"Physical Interconnect", Text("SATA")}};

std::string Services(const Keys& keys, const std::vector<std::string>& discs) {
  return Entry("IODVDServices", keys, {Entry("IODVDBlockStorageDriver", {}, discs)});
}

std::string Disc(const Keys& keys) {
  return Entry("IODVDMedia", keys, {Entry("IODVDMediaBSDClient", {})});
}

/// A bus with a disk at its first controller; a drive, or what stands in its place, at the second.
std::string Bus(const std::string& device) {
  const auto controller = [](const std::string& attached) {
    return Entry("AHCI", {}, {Entry("Port", {}), Entry("IOAHCIDevice", {}, {attached})});
  };
  return Entry("Root", {},
               {Entry("AppleACPIPCI", {},
                      {controller(Entry("IOAHCIBlockStorageDevice", {})), controller(device)})});
}

std::string Nub(const std::vector<std::string>& children) {
  return Entry("IOSCSIPeripheralDeviceNub", {{"Vendor Identification", Text("EXAMPLE")}}, children);
}

const std::string DISC_LIST =
    PropertyList(Dictionary({{"TotalSize", "<integer>4700000000</integer>"},
                             {"MountPoint", Text("/Volumes/Größe")},
                             {"VolumeName", Text("Größe")},
                             {"FilesystemType", Text("udf")},
                             {"FilesystemUserVisibleName", Text("Universal Disk Format (UDF)")},
                             {"OpticalDeviceType", Text("DVD-ROM, CD-ROM,DVD-R")}}));

class CdromSectionTest : public testing::Test {
 protected:
  ~CdromSectionTest() override {
    boost::filesystem::remove("/tmp/diskInfo.plist");
    EXPECT_EQ(Norvik::Platform::CountLiveObjects(), Norvik::Platform::LiveObjects());
  }

  std::list<CdromInfo> DrivesOf(const std::string& registry, const std::string& diskutil) {
    // The tool answers for a device only, and leaves the words that it was given.
    recording.Add("answer", diskutil);
    recording.AddProgram("diskutil",
                         "echo \"$*\" >> $0.words\n"
                         "[ \"$3\" = /dev/ ] || cat \"$(dirname $0)/../answer\"\n");
    recording.AddRegistry(registry);
    recording.PutInForce();
    std::list<CdromInfo> drives;
    CdromSection().GetInfo(drives);
    recording.End();
    return drives;
  }

  FixedFilesLock lock;
  MacRecording recording;
};

TEST_F(CdromSectionTest, ADriveWithADiscTellsBoth) {
  const auto drives = DrivesOf(Bus(Entry("IOAHCISerialATAPI", DRIVE,
                                         {Nub({Services({{"device-type", Text("DVD")}},
                                                        {Disc({{"BSD Name", Text("disk2")}})})})})),
                               DISC_LIST);
  ASSERT_EQ(drives.size(), 1u);
  const CdromInfo& drive = drives.front();
  EXPECT_EQ(drive.model, "EXAMPLE DVD-R   X1          ");
  EXPECT_EQ(drive.serial, "   Q0001");
  EXPECT_EQ(drive.busType, "SATA");
  EXPECT_EQ(drive.mediaType, "DVD");
  EXPECT_EQ(drive.manufacturer, "EXAMPLE");
  EXPECT_EQ(drive.pnpDeviceId, "/dev/disk2");
  // In order, with the blank behind the comma.
  EXPECT_THAT(drive.features, ElementsAre(" CD-ROM", "DVD-R", "DVD-ROM"));
  ASSERT_EQ(drive.logicalDisks.size(), 1u);
  const auto& disk = drive.logicalDisks.front();
  EXPECT_EQ(disk.sizeBytes, 4700000000u);
  EXPECT_EQ(disk.freeBytes, 0u);
  EXPECT_EQ(disk.mountPoint, "/Volumes/Größe");
  EXPECT_EQ(disk.volumeName, "Größe");
  EXPECT_EQ(disk.fileSystemType, "udf");
  EXPECT_EQ(disk.fileSystemName, "Universal Disk Format (UDF)");
  EXPECT_EQ(ContentOf(recording.Path() / "bin/diskutil.words"), "info -plist /dev/disk2\n");
}

TEST_F(CdromSectionTest, ADriveWithoutADiscTellsItself) {
  const struct {
    const char* name;
    std::string device;
    const char* mediaType;
    const char* manufacturer;
  } cases[] = {
      {"empty drive",
       Entry("IOAHCISerialATAPI", DRIVE, {Nub({Services({{"device-type", Text("DVD")}}, {})})}),
       "DVD", "EXAMPLE"},
      {"services without a type", Entry("IOAHCISerialATAPI", DRIVE, {Nub({Services({}, {})})}), "",
       "EXAMPLE"},
      {"no services", Entry("IOAHCISerialATAPI", DRIVE, {Nub({})}), "Unknown", "EXAMPLE"},
      {"nothing below, longer name",
       Entry("Driver", {{"IORegistryEntryName", Text("OtherIOAHCISerialATAPIDriver")}}), "Unknown",
       ""},
  };
  for (const auto& row : cases) {
    // What an earlier run has left is removed, not read.
    WriteFile("/tmp/diskInfo.plist", DISC_LIST);
    const auto drives = DrivesOf(Bus(row.device), DISC_LIST);
    ASSERT_EQ(drives.size(), 1u) << row.name;
    EXPECT_EQ(drives.front().mediaType, row.mediaType) << row.name;
    EXPECT_EQ(drives.front().manufacturer, row.manufacturer) << row.name;
    EXPECT_EQ(drives.front().pnpDeviceId, "/dev/") << row.name;
    EXPECT_THAT(drives.front().logicalDisks, IsEmpty()) << row.name;
    EXPECT_THAT(drives.front().features, IsEmpty()) << row.name;
  }
}

TEST_F(CdromSectionTest, AnAnswerThatIsNoDictionaryAddsNothing) {
  const auto drive = Entry("IOAHCISerialATAPI", DRIVE,
                           {Nub({Services({}, {Disc({{"BSD Name", Text("disk2")}})})})});
  for (const std::string answer : {"", "Could not find disk", "<plist><dict>"}) {
    EXPECT_THAT(DrivesOf(Bus(drive), answer).front().logicalDisks, IsEmpty()) << answer;
  }
  EXPECT_THAT(DrivesOf(Bus(drive), PropertyList(Array({}))).front().logicalDisks, IsEmpty());
  const auto empty = DrivesOf(Bus(drive), PropertyList(Dictionary({}))).front();
  EXPECT_EQ(empty.logicalDisks.size(), 1u);
  EXPECT_THAT(empty.features, IsEmpty());
}

TEST_F(CdromSectionTest, WhatIsNoOpticalDriveIsLeftOut) {
  const std::string drive = Entry("IOAHCISerialATAPI", DRIVE);
  EXPECT_THAT(DrivesOf(Bus(Entry("Other", DRIVE)), ""), IsEmpty());
  EXPECT_THAT(DrivesOf(Entry("AppleACPIPCI", {}, {Entry("IOAHCIDevice", {})}), ""), IsEmpty());
  EXPECT_THAT(DrivesOf(Entry("Root", {}, {Entry("IOAHCIDevice", {}, {drive})}), ""), IsEmpty());
  EXPECT_THAT(DrivesOf("", ""), IsEmpty());
}

}  // namespace
