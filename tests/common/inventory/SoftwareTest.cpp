#include "common/inventory/ApplicationsReport.h"
#include "common/inventory/PackageDatabase.h"
#include "common/inventory/SoftwareRegisteredSection.h"
#include "support/Json.h"
#include "support/MacRecording.h"
#include "support/RecordJson.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using Software = std::vector<SoftwareRegisteredInfo>;

const std::string FOLDER = NORVIK_SOURCE_DIR "/tests/common/inventory/";
const std::string STATUS = ContentOf(FOLDER + "packages.txt");
const std::string REPORT = ContentOf(FOLDER + "applications.xml");

/// Expects records with the fields of a data file and defaults in all others.
void ExpectSoftware(const Software& software, const char* expected) {
  Json wanted = Json::array();
  for (const Json& fields : DataOf("common/inventory/software.json")[expected]) {
    wanted.push_back(JsonOf(SoftwareRegisteredInfo(tests::ParseJson(fields.dump()))));
  }
  EXPECT_EQ(Shown(JsonOf(software)), Shown(wanted));
}

Software ReadStatus(const std::string& text) {
  std::istringstream stream(text);
  return ReadPackageStatus(stream, [](const std::string& name, const std::string& architecture) {
    return name == "libfjord2" && architecture == "amd64" ? 1700000000 : 0;
  });
}

TEST(PackageDatabase, GivesTheInstalledPackagesOfAnyText) {
  ExpectSoftware(ReadStatus(STATUS), "packages");
  for (std::size_t length = 0; length < STATUS.size(); ++length) {
    EXPECT_LE(ReadStatus(STATUS.substr(0, length)).size(), 3u);
  }
  for (const auto* odd : {"", "\n\n\n", ":", " :x\n", "Package:\nStatus:\n\n", "Package: x\n"}) {
    EXPECT_TRUE(ReadStatus(odd).empty()) << odd;
  }
  const auto huge =
      ReadStatus("Package: x\nStatus: a b installed\nInstalled-Size: 18446744073709551615");
  EXPECT_EQ(huge.at(0).sizeBytes, 0u);
}

TEST(ApplicationsReport, GivesTheApplicationsThatHaveANameAndNothingForTextThatIsNone) {
  const LogCapture log;
  ExpectSoftware(ReadApplicationsReport(REPORT), "applications");
  for (std::size_t length = 0; length < REPORT.size() - 8; ++length) {
    EXPECT_TRUE(ReadApplicationsReport(REPORT.substr(0, length)).empty()) << length;
  }
  for (const auto* odd : {"<plist/>", "<plist><array/></plist>", "<a>", "plain",
                          "<plist><array><dict><array/><key>_items</key></dict></array></plist>"}) {
    EXPECT_TRUE(ReadApplicationsReport(odd).empty()) << odd;
  }
}

TEST(SoftwareRegisteredSection, ReadsThePackageDatabaseOrElseAsksForTheReport) {
  const std::string status = "root/var/lib/dpkg/status";
  const std::string list = "root/var/lib/dpkg/info/libfjord2:amd64.list";
  MacRecording machine;
  machine.AddAnswer("system_profiler -xml SPApplicationsDataType", REPORT);
  machine.Add(status, STATUS).Add(list, "").PutInForce();
  fs::last_write_time(machine.Path() / list, 1600000000);
  Software software(1);
  SoftwareRegisteredSection().GetInfo(software);
  ASSERT_EQ(software.size(), 4u);
  EXPECT_EQ(software[1].installDate, 1600000000);
  EXPECT_EQ(software[2].installDate, 0);
  fs::remove(machine.Path() / status);
  SoftwareRegisteredSection().GetInfo(software);
  EXPECT_EQ(software.size(), 9u);
}

TEST(SoftwareRegisteredSection, SearchesTheFoldersOfApplicationsIfTheReportHasNone) {
  const Json data = DataOf("common/inventory/software.json");
  MacRecording machine;
  machine.AddAnswer("system_profiler -xml SPApplicationsDataType",
                    Json::parse(R"([{"_dataType": "SPApplicationsDataType", "_items": []}])"));
  for (const auto& [path, list] : data["lists of bundles"].items()) {
    machine.Add("root" + path, PropertyListOf(list));
  }
  for (const std::string path : {"Applications/Loop", "Applications/Fjord 2.0/Loop"}) {
    boost::filesystem::create_directory_symlink("..", machine.Path() / "root" / path);
  }
  for (const Json& bundle : data["bundles"]) {
    const std::string location = bundle["location"];
    boost::filesystem::last_write_time(machine.Path() / ("root" + location), 1600000000);
  }
  machine.PutInForce();
  const LogCapture log;
  Software software;
  SoftwareRegisteredSection().GetInfo(software);
  ExpectSoftware(software, "bundles");
  EXPECT_TRUE(log.Holds(Logger::LEVEL_WARNING,
                        "system_profiler reports no applications; found in their folders: 4"));
}

}  // namespace
