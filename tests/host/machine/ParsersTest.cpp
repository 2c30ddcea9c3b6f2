#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "common/text/Text.h"
#include "host/machine/MountText.h"
#include "host/machine/NetworkText.h"
#include "host/machine/ProcessorText.h"
#include "host/machine/SystemText.h"

namespace {

using namespace Norvik::Host;
using Norvik::Common::ToUtf8;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::UnorderedElementsAre;

constexpr char TWO_PACKAGES[] =
    "processor\t: 0\nvendor_id\t: GenuineIntel\ncpu family\t: 6\nmodel\t\t: 85\n"
    "model name\t: Xeon: Gold  6130\nstepping\t: 4\ncpu MHz\t\t: 2100.000\nphysical id\t: 0\n"
    "core id\t\t: 0\nflags\t\t: fpu vme\n\n"
    "processor\t: 1\nmodel name\t: Xeon: Gold  6130\nphysical id\t: 1\ncore id\t\t: 0\n\n"
    "processor\t: 2\nmodel name\t: Xeon: Gold  6130\nphysical id\t: 0\ncore id\t\t: 0\n\n"
    "processor\t: 3\nmodel name\t: Xeon: Gold  6130\nphysical id\t: 1\ncore id\t\t: 1\n";

TEST(ProcessorText, GroupsLogicalProcessorsIntoPackages) {
  const auto packages = ParseCpuInfo(TWO_PACKAGES);
  ASSERT_EQ(packages.size(), 2u);
  const auto& first = packages[0].info;
  EXPECT_EQ(first.index, 0u);
  EXPECT_EQ(first.model, "Xeon: Gold  6130");
  EXPECT_EQ(first.manufacturer, "GenuineIntel");
  EXPECT_EQ(first.identifier, "Family 6 Model 85 Stepping 4");
  EXPECT_EQ(first.features.size(), 2u);
  EXPECT_EQ(first.maximumMhz, 0u);  // the present frequency is none of the machine's facts
  EXPECT_EQ(first.threads, 2u);
  EXPECT_EQ(first.cores, 1u);
  EXPECT_EQ(packages[1].firstProcessor, 1u);
  EXPECT_EQ(packages[1].info.threads, 2u);
  EXPECT_EQ(packages[1].info.cores, 2u);
}

TEST(ProcessorText, ReadsProcessorsThatTellCodesInPlaceOfNames) {
  const auto packages = ParseCpuInfo(
      "processor\t: 0\nBogoMIPS\t: 108.00\nFeatures\t: fp asimd\nCPU implementer\t: 0x41\n"
      "CPU architecture: 8\nCPU part\t: 0xd08\nCPU revision\t: 3\n\n"
      "processor\t: 1\nCPU implementer\t: 0x41\n\n"
      "Hardware\t: BCM2835\nModel\t\t: Board 4\n");
  ASSERT_EQ(packages.size(), 1u);
  EXPECT_EQ(packages[0].info.manufacturer, "ARM");
  EXPECT_EQ(packages[0].info.identifier, "Family 8 Model 0xd08 Stepping 3");
  EXPECT_EQ(packages[0].info.cores, 2u);
  EXPECT_THAT(ParseCpuInfo(""), IsEmpty());
  EXPECT_THAT(ParseCpuInfo("no colon\n:\n::\nprocessor"), IsEmpty());
}

TEST(ProcessorText, ReadsCacheSizes) {
  const struct {
    const char* text;
    std::uint64_t bytes;
  } cases[] = {{"32K", 32768}, {"2M", 2097152}, {"512", 512}, {"", 0},
               {"K", 0},       {"32 K", 0},     {"x", 0}};
  for (const auto& row : cases) EXPECT_EQ(ParseCacheSize(row.text), row.bytes) << row.text;
}

TEST(MountText, ReadsPlacesWithBlanksAndOptionalFields) {
  const auto mounts = ParseMountInfo(
      "27 1 254:0 / / rw,relatime - ext4 /dev/vda1 rw\n"
      "30 27 8:1 / /media/my\\040disk\\134x rw shared:2 master:1 - vfat /dev/sda1 rw\n"
      "31 27 0:5 / /dev rw - devtmpfs devtmpfs\n"
      "32 27 8:2 / /data rw - xfs /dev/sdb rw\n"
      "33 32 8:3 / /data rw - ext4 /dev/sdc rw\n"
      "cut short\n27 1 254:0 / /x rw\n\n");
  ASSERT_EQ(mounts.size(), 4u);
  EXPECT_EQ(mounts[0].deviceNumber, "254:0");
  EXPECT_EQ(mounts[1].mountPoint, "/media/my disk\\x");
  EXPECT_EQ(mounts[1].fileSystem, "vfat");
  EXPECT_EQ(mounts[3].source, "/dev/sdc");  // hides the one below it
}

TEST(MountText, AVolumeIsAWholeFileSystemOrASubvolume) {
  const auto volumes = VolumesOf({{"8:1", "/", "/srv/copy", "ext4", "/dev/sda1"},
                                  {"8:1", "/", "/srv", "ext4", "/dev/sda1"},
                                  {"8:1", "/docker/hosts", "/etc/hosts", "ext4", "/dev/sda1"},
                                  {"0:30", "/@", "/", "btrfs", "/dev/sda2"},
                                  {"0:30", "/@home", "/home", "btrfs", "/dev/sda2"}});
  ASSERT_EQ(volumes.size(), 3u);
  EXPECT_EQ(volumes[0].mountPoint, "/srv");
  EXPECT_EQ(volumes[1].mountPoint, "/");
  EXPECT_EQ(volumes[2].mountPoint, "/home");
  EXPECT_EQ(WholeGibibytes((5ull << 30) - 1), 4ull << 30);
  EXPECT_EQ(WholeGibibytes(5ull << 30), 5ull << 30);
}

TEST(NetworkText, ReadsGateways) {
  EXPECT_THAT(ParseRoutes("Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\n"
                          "eth0\t00000000\t0100A8C0\t0003\t0\t0\t100\t00000000\n"
                          "eth0\t0000000A\t0100A8C0\t0003\t0\t0\t100\t000000FF\n"
                          "eth1\t0000A8C0\t00000000\t0001\t0\t0\t100\t00FFFFFF\nshort 1\n"),
              UnorderedElementsAre(Pair("eth0", ElementsAre("192.168.0.1"))));
  const std::string nowhere(32, '0');
  EXPECT_THAT(ParseIpv6Routes(nowhere + " 00 " + nowhere +
                              " 00 fe800000000000000000000000000001 00000400 1 0 00000003 eth0\n" +
                              nowhere + " 00 " + nowhere + " 00 " + nowhere +
                              " ffffffff 1 0 00200200 lo\nrubbish\n"),
              UnorderedElementsAre(Pair("eth0", ElementsAre("fe80::1"))));
  EXPECT_THAT(
      ParseNetstatRoutes("Routing tables\n\nInternet:\n"
                         "Destination        Gateway            Flags        Netif Expire\n"
                         "default            192.168.1.1        UGScg          en0\n"
                         "default            link#12            UCSIg      bridge1      !\n"
                         "127                127.0.0.1          UCS            lo0\n\nInternet6:\n"
                         "Destination        Gateway            Flags        Netif Expire\n"
                         "default            fe80::1%en0        UGcg           en0\n"),
      UnorderedElementsAre(Pair("en0", ElementsAre("192.168.1.1", "fe80::1"))));
}

TEST(NetworkText, LeavesOutAddressesThatTheSystemChangesByItself) {
  const auto addresses = ParseIpv6Addresses(
      "fe8000000000000000fc00fffe000001 02 40 20 80     eth0\n"
      "fd000000000000000000000000000002 02 40 00 82     eth0\n"
      "fd0000000000000012345678abcdef01 02 40 00 01     eth0\n"
      "00000000000000000000000000000001 01 80 10 80       lo\nzz 01\n");
  ASSERT_EQ(addresses.count("eth0"), 1u);
  ASSERT_EQ(addresses.at("eth0").size(), 2u);
  EXPECT_EQ(addresses.at("eth0")[0].address, "fd00::2");
  EXPECT_EQ(addresses.at("eth0")[0].mask, "64");
  EXPECT_EQ(addresses.at("lo")[0].address, "::1");
}

TEST(NetworkText, ReadsResolverLeasesVlansAndPorts) {
  const auto file = ParseResolverFile(
      "# a comment\nnameserver 10.0.0.53\nnameserver 10.0.0.53\nnameserver ::1\nsearch a.example "
      "b\n");
  EXPECT_THAT(file.servers, ElementsAre("10.0.0.53", "::1"));
  EXPECT_EQ(file.domain, "a.example");
  EXPECT_EQ(ParseResolverFile("search a\ndomain d.example\n").domain, "d.example");
  EXPECT_EQ(ParseResolverFile("search .\n").domain, "");
  EXPECT_THAT(ParseDhcpLeases("lease {\n  interface \"eth0\";\n"
                              "  option dhcp-server-identifier 10.0.0.1;\n}\n"
                              "lease {\n  interface \"eth0\";\n"
                              "  option dhcp-server-identifier 10.0.0.2;\n}\n;\n"),
              UnorderedElementsAre(Pair("eth0", "10.0.0.2")));
  EXPECT_THAT(ParseVlans("VLAN Dev name    | VLAN ID\nName-Type: VLAN_NAME_TYPE_RAW_PLUS_VID\n"
                         "eth0.5         | 5  | eth0\n"),
              UnorderedElementsAre(Pair("eth0.5", 5u)));
  EXPECT_THAT(ParseHardwarePorts("\nHardware Port: Wi-Fi\nDevice: en0\n"
                                 "Ethernet Address: 00:1a:2b:3c:4d:5e\n\n"
                                 "Hardware Port: Thunderbolt Bridge\nDevice: bridge0\n\n"
                                 "VLAN Configurations\n===================\n"),
              UnorderedElementsAre(Pair("en0", "Wi-Fi"), Pair("bridge0", "Thunderbolt Bridge")));
}

TEST(SystemText, ReadsCommonShapes) {
  EXPECT_EQ(PlainMacAddress("00:1a:2b:3c:4d:5e"), "001A2B3C4D5E");
  for (const char* text : {"", "00:1a", "00:1a:2b:3c:4d:5g", "00:1a:2b:3c:4d:5e:6f"}) {
    EXPECT_EQ(PlainMacAddress(text), "") << text;
  }
  EXPECT_EQ(LeadingNumber("24684096 kB"), 24684096u);
  EXPECT_EQ(LeadingNumber("-1"), 0u);
  EXPECT_EQ(LeadingNumber("99999999999999999999"), 0u);
  EXPECT_EQ(WithoutQuotes("\"a b\""), "a b");
  EXPECT_EQ(WithoutQuotes("\""), "\"");
  EXPECT_THAT(ParseEntries("A=1\n B = x=y \nA=2\nno\n", '='),
              UnorderedElementsAre(Pair("A", "1"), Pair("B", "x=y")));
}

}  // namespace
