#include "host/machine/GatherLinux.h"

#include <gtest/gtest.h>

#include <boost/filesystem/operations.hpp>
#include <fstream>

#include "common/identification/SmBios.h"
#include "common/text/Text.h"
#include "host/machine/FirstInventory.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Host;
namespace fs = boost::filesystem;

class GatherLinux : public testing::Test {
 protected:
  void Put(const std::string& path, const std::string& text) {
    const fs::path file = folder_ / fs::path(path).relative_path();
    fs::create_directories(file.parent_path());
    std::ofstream(file.string()) << text;
  }
  void Link(const std::string& path, const std::string& target) {
    const fs::path file = folder_ / fs::path(path).relative_path();
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
  }
  void PutDisk(const std::string& folder, const std::string& number, const std::string& sectors) {
    Put(folder + "/dev", number + "\n");
    Put(folder + "/size", sectors + "\n");
  }

  Norvik::Tests::TemporaryFolder folder_;
  const SystemFiles files_{folder_.Path()};
};

TEST_F(GatherLinux, ReadsDisksPartitionsAndVolumes) {
  const std::string disk = "/sys/devices/pci0000:00/ata1/host0/block/sda";
  PutDisk(disk, "8:0", "2097152");
  Put(disk + "/device/model", "Disk 9000   \n");
  Put(disk + "/device/vendor", "ATA     \n");
  Put(disk + "/device/vpd_pg80", std::string("\0\x80\0\x06", 4) + " S-123");
  Put(disk + "/queue/rotational", "1\n");
  for (const std::string number : {"10", "2"}) {
    const std::string folder = disk + "/sda" + number;
    PutDisk(folder, "8:" + number, "1024");
    Put(folder + "/partition", number + "\n");
    Put(folder + "/start", "2048\n");
    Put(folder + "/ro", "0\n");
  }
  Put(disk + "/sda2/uevent", "PARTNAME=EFI System\nPARTUUID=abc\n");
  Put("/run/udev/data/b8:2",
      "S:disk\nE:ID_PART_ENTRY_TYPE=0xef\nE:ID_PART_ENTRY_FLAGS=0x80\nE:ID_FS_TYPE=vfat\n");
  Put("/run/udev/data/b8:10", "E:ID_FS_LABEL_ENC=my\\x20disk\n");
  Link("/sys/block/sda", "../devices/pci0000:00/ata1/host0/block/sda");
  PutDisk("/sys/block/dm-0", "253:0", "512");
  PutDisk("/sys/block/dm-0/slaves/sda10", "8:10", "1024");
  for (const std::string name : {"loop0", "ram0", "zram0", "sr0"}) {
    PutDisk("/sys/block/" + name, "7:0", "4096");
  }
  PutDisk("/sys/block/sdb", "8:16", "0");  // a card reader without a card
  Put("/proc/self/mountinfo",
      "1 0 253:0 / / rw - ext4 /dev/mapper/root rw\n2 1 8:10 / /proc rw - xfs /dev/sda10 rw\n"
      "3 1 0:5 / /sys rw - tmpfs tmpfs rw\n");

  const auto disks = GatherDisks(files_);
  ASSERT_EQ(disks.size(), 1u);
  const PhysicalDiskInfo& sda = disks[0];
  EXPECT_EQ(sda.pnpDeviceId, "sda");
  EXPECT_EQ(sda.sizeBytes, 1ull << 30);
  EXPECT_EQ(sda.model, "Disk 9000");
  EXPECT_EQ(sda.serial, "S-123");
  EXPECT_EQ(sda.mediaType, "HDD");
  EXPECT_EQ(sda.busType, "SATA");
  ASSERT_EQ(sda.partitions.size(), 2u);
  const DiskPartitionInfo& efi = sda.partitions.front();
  EXPECT_EQ(efi.device, "/dev/sda2");
  EXPECT_EQ(efi.index, 2u);
  EXPECT_EQ(efi.offsetBytes, 1u << 20);
  EXPECT_EQ(efi.sizeBytes, 1u << 19);
  EXPECT_EQ(efi.type, "0xef");
  EXPECT_EQ(efi.label, "EFI System");
  EXPECT_EQ(efi.uuid, "abc");
  EXPECT_TRUE(efi.bootable);
  EXPECT_EQ(sda.partitions.back().label, "my disk");
  EXPECT_EQ(sda.partitions.back().fileSystemType, "xfs");
  ASSERT_EQ(sda.logicalDisks.size(), 2u);
  EXPECT_EQ(sda.logicalDisks.front().mountPoint, "/");  // over the layer
  EXPECT_GT(sda.logicalDisks.front().sizeBytes, 0u);
  EXPECT_EQ(sda.logicalDisks.front().freeBytes % (1ull << 30), 0u);
  EXPECT_EQ(sda.logicalDisks.back().volumeName, "my disk");
}

TEST_F(GatherLinux, ReadsAdaptersAndLeavesOutWhatIsNoPartOfTheMachine) {
  const auto put = [&](const std::string& name, const std::string& type) {
    const std::string folder = "/sys/class/net/" + name;
    Put(folder + "/type", type);
    Put(folder + "/mtu", "1500\n");
    Put(folder + "/speed", name == "test-eth" ? "1000\n" : "-1\n");
    Put(folder + "/address", "00:1a:2b:3c:4d:5e\n");
    if (name == "test-eth") Put(folder + "/device/uevent", "");
    if (name == "test-eth") Link(folder + "/device/driver", "../../bus/drivers/e1000e");
    if (name == "test-wifi") Put(folder + "/phy80211/name", "phy0");
    if (name == "test-eth") Put(folder + "/ifindex", "4\n");
  };
  put("test-eth", "1");
  put("test-wifi", "1");
  put("lo", "772");
  put("veth12ab", "1");
  put("dummy0", "1");
  Put("/sys/class/net/bonding_masters", "");
  Put("/proc/net/route", "test-eth\t00000000\t0100A8C0\t0003\t0\t0\t0\t00000000\n");
  Put("/etc/resolv.conf", "nameserver 10.0.0.53\nsearch x.example\n");
  Put("/run/systemd/netif/leases/4", "ADDRESS=10.0.0.9\nSERVER_ADDRESS=10.0.0.1\n");

  const auto adapters = GatherAdapters(files_);
  ASSERT_EQ(adapters.size(), 2u);
  EXPECT_EQ(adapters[0].name, "test-eth");
  EXPECT_EQ(adapters[0].speedMbps, 1000u);
  EXPECT_EQ(ToUtf8(adapters[0].macAddress), "001A2B3C4D5E");
  EXPECT_EQ(adapters[0].type, "Ethernet");
  EXPECT_EQ(adapters[0].description, "e1000e");
  EXPECT_EQ(adapters[0].gateways, std::vector<wxString>{"192.168.0.1"});
  EXPECT_EQ(adapters[0].dnsServers, std::vector<wxString>{"10.0.0.53"});
  EXPECT_EQ(adapters[0].dhcpServers, std::vector<wxString>{"10.0.0.1"});
  EXPECT_EQ(adapters[1].type, "Wireless");
  EXPECT_EQ(adapters[1].speedMbps, 0u);
  EXPECT_TRUE(adapters[1].dnsServers.empty());
  EXPECT_EQ(GatherDomain(files_), "x.example");
}

TEST_F(GatherLinux, ReadsTheOperatingSystem) {
  Put("/etc/os-release", "NAME=\"Some Linux\"\nVERSION_ID='12'\nVERSION_CODENAME=worm\n");
  Put("/etc/debian_version", "12.5\n");
  Put("/etc/default/locale", "LANG=\"de_DE.UTF-8\"\n");
  Link("/etc/localtime", "/usr/share/zoneinfo/Europe/Berlin");
  Put("/proc/self/mountinfo", "1 0 8:1 / / rw - ext4 /dev/sda1 rw\n");
  const auto system = GatherOperatingSystem(files_);
  EXPECT_EQ(ToUtf8(system.name), "Some Linux");
  EXPECT_EQ(ToUtf8(system.version), "12");
  EXPECT_EQ(ToUtf8(system.codeName), "worm");
  EXPECT_EQ(ToUtf8(system.build), "12.5");
  EXPECT_EQ(ToUtf8(system.language), "de_DE.UTF-8");
  EXPECT_EQ(ToUtf8(system.timeZone), "Europe/Berlin");
  EXPECT_EQ(ToUtf8(system.bootVolume), "/dev/sda1");
  EXPECT_EQ(ToUtf8(system.family), "Linux");
}

TEST_F(GatherLinux, WithoutSmbiosTheSetupComesFromTheDeviceFolder) {
  Put("/sys/class/dmi/id/sys_vendor", "Maker\n");
  Put("/sys/class/dmi/id/product_name", "Box 1\n");
  Put("/sys/class/dmi/id/board_serial", "B-1\n");
  Put("/sys/class/dmi/id/chassis_type", "10\n");
  SetupInfo setup;
  setup.system.manufacturer = "Known";
  CompleteSetup(files_, setup);
  EXPECT_EQ(setup.system.manufacturer, "Known");
  EXPECT_EQ(ToUtf8(setup.modelIdentifier), "Box 1");
  EXPECT_EQ(setup.baseboard.serial, "B-1");
  EXPECT_EQ(ToUtf8(setup.chassis.typeName), "Notebook");
}

TEST_F(GatherLinux, ReadsMemoryAndProcessorCaches) {
  Put("/proc/meminfo", "MemTotal:       24684096 kB\nMemFree: 1 kB\nSwapTotal: 1024 kB\n");
  EXPECT_EQ(GatherMemory(files_).totalBytes, 24684096ull * 1024);
  EXPECT_EQ(GatherMemory(files_).swapBytes, 1024u * 1024);
  Put("/proc/cpuinfo", "processor\t: 0\nmodel name\t: X\n\nprocessor\t: 1\nmodel name\t: X\n");
  const std::string folder = "/sys/devices/system/cpu/cpu0/";
  Put(folder + "cpufreq/cpuinfo_max_freq", "3500000\n");
  Put(folder + "cache/index0/level", "1\n");
  Put(folder + "cache/index0/type", "Data\n");
  Put(folder + "cache/index0/size", "48K\n");
  Put(folder + "cache/uevent", "");
  const auto processors = GatherProcessors(files_);
  ASSERT_EQ(processors.size(), 1u);
  EXPECT_EQ(processors[0].maximumMhz, 3500u);
  ASSERT_EQ(processors[0].caches.size(), 1u);
  EXPECT_EQ(processors[0].caches.front().name, "L1 Data");
  EXPECT_EQ(processors[0].caches.front().sizeBytes, 49152u);
}

TEST_F(GatherLinux, AMachineThatTellsNothingGivesEmptyFacts) {
  EXPECT_TRUE(GatherDisks(files_).empty());
  EXPECT_TRUE(GatherAdapters(files_).empty());
  EXPECT_TRUE(GatherProcessors(files_).empty());
  EXPECT_EQ(GatherMemory(files_).totalBytes, 0u);
  EXPECT_TRUE(GatherOperatingSystem(files_).name.empty());
  EXPECT_EQ(GatherDomain(files_), "");
}

TEST(FirstInventory, IsTheSameTwiceOnAnUnchangedMachine) {
  const auto smBios = ReadSmBios();
  ASSERT_TRUE(smBios);
  const auto first = GatherFirstInventory(*smBios);
  const auto second = GatherFirstInventory(*smBios);
  EXPECT_FALSE(first.memory != second.memory);
  EXPECT_FALSE(first.setup != second.setup);
  EXPECT_FALSE(first.operatingSystem != second.operatingSystem);
  EXPECT_EQ(first.networkAdapters, second.networkAdapters);
  EXPECT_EQ(first.physicalDisks, second.physicalDisks);
  EXPECT_EQ(first.processors, second.processors);
  EXPECT_GT(first.memory.totalBytes, 0u);
  EXPECT_FALSE(first.processors.empty());
  EXPECT_EQ(first.operatingSystemType, first.operatingSystem.family);
}

}  // namespace
