#include "module/Inventory/NetworkDrivesSection.h"

#include <gmock/gmock.h>

#include "support/Collected.h"
#include "support/LogCapture.h"
#include "support/Programs.h"
#include "support/PropertyListText.h"

namespace Norvik::KOB {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace Tests;
using Lines = std::vector<std::string>;

class NetworkDrivesSectionTest : public testing::Test {
 protected:
  Lines Collect(const std::string& report) {
    programs.AddOutput("system_profiler", "SPNetworkVolumeDataType -xml", report);
    using Info = NetworkDriveInfo;
    return TextsOf(Collected<Info>(NetworkDrivesSection({})), &Info::unit, &Info::path,
                   &Info::server);
  }
  static std::string Volumes(const Lines& volumes) {
    return Report("SPNetworkVolumeDataType", volumes);
  }

  Programs programs;
  LogCapture log;
};

std::string Volume(const std::string& type, const std::string& unit, const std::string& path) {
  return Dictionary({{"_name", Text("volume")},
                     {"spnetworkvolume_fsmtnonname", Text(unit)},
                     {"spnetworkvolume_fstypename", Text(type)},
                     {"spnetworkvolume_mntfromname", Text(path)}});
}

TEST(ServerOfVolume, IsBetweenTheLastAtSignAndTheNextSlash) {
  const std::pair<const char*, const char*> rows[] = {
      {"//user@nas/share", "nas"},  {"nas:/export", "nas:/export"},
      {"//a@b@nas/x@y", "y"},       {"//user@nas", "nas"},
      {"//user@/share", ""},        {"//user@", ""},
      {"map -hosts", "map -hosts"}, {"", ""}};
  for (const auto& [source, server] : rows) EXPECT_EQ(ServerOfVolume(source), server) << source;
}

TEST_F(NetworkDrivesSectionTest, ListsTheMountedVolumesOfNetworkFileSystems) {
  const std::pair<const char*, bool> rows[] = {
      {"smbfs", true},  {"SMBFS", true},  {"nfs", true},    {"afpfs", true}, {"cifs", true},
      {"autofs", true}, {"x nfs4", true}, {"mtmfs", false}, {"apfs", false}, {"", false}};
  for (const auto& [type, listed] : rows) {
    const auto texts = Collect(Volumes({Volume(type, " /tmp\n", " //anna@nas/share ")}));
    EXPECT_EQ(texts, Lines(listed, "/tmp|//anna@nas/share|nas")) << type;
  }
  const auto afp = Dictionary(
      {{"spnetworkvolume_fsmtnonname", Text("/")}, {"spnetworkvolume_fstypename", Text("afpfs")}});
  const auto noType = Dictionary({{"spnetworkvolume_fsmtnonname", Text("/")}});
  EXPECT_THAT(Collect(Volumes({noType, afp})), ElementsAre("/||"));
  EXPECT_THAT(log.Texts(3), IsEmpty());
}

TEST_F(NetworkDrivesSectionTest, AVolumeThatHasGoneIsSkipped) {
  EXPECT_THAT(Collect(Volumes({Volume("nfs", "/Volumes/gone %", "nas:/x"), Volume("nfs", "", ""),
                               Volume("nfs", "/tmp", "nas:/y")})),
              ElementsAre("/tmp|nas:/y|nas:/y"));
  EXPECT_THAT(log.Texts(3),
              ElementsAre("Skipping network drive: /Volumes/gone % (Mount path does not exist)",
                          "Skipping network drive:  (Mount path does not exist)"));
}

TEST_F(NetworkDrivesSectionTest, AFailureIsLoggedAndKeepsWhatWasRead) {
  const std::string path(5000, 'x');
  EXPECT_THAT(Collect(Volumes({Volume("nfs", "/tmp", "a"), Volume("nfs", "/" + path, "b"),
                               Volume("nfs", "/tmp", "c")})),
              ElementsAre("/tmp|a|a"));
  EXPECT_THAT(log.Texts(2),
              ElementsAre(testing::StartsWith("Error getting network drives info: ")));
  for (const std::string report : {"", "Volumes:\n", "<plist/>"}) {
    EXPECT_THAT(Collect(report), IsEmpty()) << report;
  }
}

}  // namespace
}  // namespace Norvik::KOB
