#include "host/machine/DiskutilText.h"

#include <gtest/gtest.h>

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;

constexpr char REPORT[] = R"(   Device Identifier:         disk0
   Device Node:               /dev/disk0
   Whole:                     Yes
   Part of Whole:             disk0
   Device / Media Name:       APPLE SSD AP0512M

   Volume Name:               Not applicable (no file system)
   Mounted:                   Not applicable (no file system)
   Protocol:                  PCI-Express

   Disk Size:                 500.3 GB (500277790720 Bytes) (exactly 977105060 512-Byte-Units)
   Media Read-Only:           No
   Solid State:               Yes
   Virtual:                   No

**********

   Device Identifier:         disk0s10
   Device Node:               /dev/disk0s10
   Whole:                     No
   Part of Whole:             disk0
   Volume Name:               Not applicable (no file system)
   Mounted:                   Not applicable (no file system)
   Partition Type:            Apple_APFS
   Disk Size:                 500.0 GB (499963174912 Bytes) (exactly 976490576 512-Byte-Units)
   Partition Offset:          314597376 Bytes (76806 4096-Byte-Device-Blocks)

**********

   Device Identifier:         disk0s1
   Device Node:               /dev/disk0s1
   Whole:                     No
   Part of Whole:             disk0
   Volume Name:               EFI
   Mounted:                   No
   Partition Type:            EFI
   Type (Bundle):             msdos
   Disk / Partition UUID:     0E239BC6-F960-3107-89CF-1C97F78BB46B
   Disk Size:                 314.6 MB (314572800 Bytes) (exactly 614400 512-Byte-Units)
   Partition Offset:          24576 Bytes (6 4096-Byte-Device-Blocks)
   Media Read-Only:           No

**********

   Device Identifier:         disk1
   Device Node:               /dev/disk1
   Whole:                     Yes
   Part of Whole:             disk1
   Virtual:                   Yes
   APFS Physical Store:       disk0s10

**********

   Device Identifier:         disk1s5s1
   Device Node:               /dev/disk1s5s1
   Whole:                     No
   Part of Whole:             disk1
   Volume Name:               Macintosh HD
   Mounted:                   Yes
   Mount Point:               /
   File System Personality:   APFS
   Type (Bundle):             apfs
   Container Total Space:     500.0 GB (499963174912 Bytes) (exactly 976490576 512-Byte-Units)
   Container Free Space:      101.5 GB (101500000001 Bytes) (exactly 1 512-Byte-Units)
   Virtual:                   Yes

**********

   Device Identifier:         disk2
   Whole:                     Yes
   Part of Whole:             disk2
   Protocol:                  Disk Image
   Virtual:                   No

**********

)";

TEST(DiskutilText, ReadsDisksPartitionsAndTheVolumesOfContainers) {
  const auto disks = ParseDiskutilInfo(REPORT);
  ASSERT_EQ(disks.size(), 1u);
  const PhysicalDiskInfo& disk = disks[0];
  EXPECT_EQ(disk.pnpDeviceId, "disk0");
  EXPECT_EQ(disk.model, "APPLE SSD AP0512M");
  EXPECT_EQ(disk.sizeBytes, 500277790720u);
  EXPECT_EQ(disk.busType, "PCI-Express");
  EXPECT_EQ(disk.mediaType, "SSD");
  ASSERT_EQ(disk.partitions.size(), 2u);
  const DiskPartitionInfo& efi = disk.partitions.front();
  EXPECT_EQ(efi.index, 1u);
  EXPECT_EQ(efi.device, "/dev/disk0s1");
  EXPECT_EQ(efi.type, "EFI");
  EXPECT_EQ(efi.label, "EFI");
  EXPECT_EQ(efi.fileSystemType, "msdos");
  EXPECT_EQ(efi.offsetBytes, 24576u);
  EXPECT_EQ(efi.sizeBytes, 314572800u);
  EXPECT_EQ(efi.uuid, "0E239BC6-F960-3107-89CF-1C97F78BB46B");
  EXPECT_FALSE(efi.readOnly);
  EXPECT_EQ(disk.partitions.back().index, 10u);
  EXPECT_EQ(disk.partitions.back().label, "");
  ASSERT_EQ(disk.logicalDisks.size(), 1u);
  const LogicalDiskInfo& volume = disk.logicalDisks.front();
  EXPECT_EQ(volume.mountPoint, "/");
  EXPECT_EQ(volume.volumeName, "Macintosh HD");
  EXPECT_EQ(volume.fileSystemType, "apfs");
  EXPECT_EQ(volume.fileSystemName, "APFS");
  EXPECT_EQ(volume.sizeBytes, 499963174912u);
  EXPECT_EQ(volume.freeBytes, 94ull << 30);
}

TEST(DiskutilText, TakesAnyText) {
  for (const char* text : {"", "**********\n**********", "Device Identifier:\n",
                           ":\n:::", "Device Identifier: d\nWhole: Yes\n"}) {
    const auto disks = ParseDiskutilInfo(text);
    EXPECT_LE(disks.size(), 1u) << text;
  }
}

}  // namespace
