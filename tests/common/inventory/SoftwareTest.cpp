#include <gmock/gmock.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <sstream>

#include "common/inventory/ApplicationsReport.h"
#include "common/inventory/PackageDatabase.h"
#include "common/inventory/SoftwareRegisteredSection.h"
#include "platform/MachinePath.h"
#include "support/Files.h"
#include "support/Json.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using Software = std::vector<SoftwareRegisteredInfo>;

constexpr char STATUS[] = R"(Package: libfjord2
Status: install ok installed
Section: libs
Installed-Size: 2048
Maintainer: Fjord Team <fjord@example.org>
Architecture: amd64
Source: fjord (1.2-3)
Version: 1:1.2-3+b1
Conffiles:
 /etc/fjord.conf 0123456789abcdef
Description: shared library: the fjord
 Version: not this one
 .
 A longer text.
Homepage: https://fjord.example.org/

Package: skerry
Essential: yes
Status: hold ok installed
Installed-Size: many
Version: 2
no field at all

Package: gone
Status: deinstall ok config-files
Version: 9

Package: half
Status: install ok half-installed

Status: install ok installed
Version: nameless
	

Package: last
Status: install ok installed)";

/// Whether a record holds these fields of a document and defaults in all others.
void ExpectRecord(const SoftwareRegisteredInfo& software, const char* fields) {
  const SoftwareRegisteredInfo expected(tests::ParseJson(fields));
  EXPECT_EQ(json::RecordToJson(software).strUgly(), json::RecordToJson(expected).strUgly());
}

Software ReadStatus(const std::string& text) {
  std::istringstream stream(text);
  return ReadPackageStatus(stream, [](const std::string& name, const std::string& architecture) {
    return name == "libfjord2" && architecture == "amd64" ? 1700000000 : 0;
  });
}

TEST(PackageDatabase, GivesTheInstalledPackages) {
  const Software packages = ReadStatus(STATUS);
  ASSERT_EQ(packages.size(), 3u);
  ExpectRecord(packages[0], R"json({
      "name": "libfjord2", "productCode": "libfjord2", "softwareKey": "libfjord2:amd64",
      "version": "1:1.2-3+b1", "publisher": "Fjord Team <fjord@example.org>",
      "sizeBytes": 2097152, "architecture": "amd64", "source": "fjord (1.2-3)",
      "description": "shared library: the fjord", "category": "libs",
      "url": "https://fjord.example.org/", "installDate": 1700000000000})json");
  ExpectRecord(packages[1], R"json({
      "name": "skerry", "productCode": "skerry", "softwareKey": "skerry:", "version": "2",
      "systemComponent": true})json");
  EXPECT_EQ(packages[2].name, "last");
}

TEST(PackageDatabase, StandsAnyText) {
  const std::string text = STATUS;
  for (std::size_t length = 0; length < text.size(); ++length) {
    EXPECT_LE(ReadStatus(text.substr(0, length)).size(), 3u);
  }
  for (const auto* odd : {"", "\n\n\n", ":", " :x\n", "Package:\nStatus:\n\n", "Package: x\n"}) {
    EXPECT_TRUE(ReadStatus(odd).empty()) << odd;
  }
  const auto huge =
      ReadStatus("Package: x\nStatus: a b installed\nInstalled-Size: 18446744073709551615");
  EXPECT_EQ(huge.at(0).sizeBytes, 0u);
}

constexpr char REPORT[] = R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Example//DTD PLIST 1.0//EN" "http://www.example.com/plist.dtd">
<plist version="1.0"><array><dict>
    <key>_SPCommandLineArguments</key><array><string>-xml</string></array>
    <key>_dataType</key><string>SPApplicationsDataType</string>
    <key>_items</key><array>
      <dict>
        <key>_name</key><string>Nöte &amp; Pad</string><key>version</key><string>4.1</string>
        <key>arch_kind</key><string>arch_arm_i64</string>
        <key>info</key><string>Nöte 4.1, © Skerry</string>
        <key>lastModified</key><date>2023-05-01T12:00:00Z</date>
        <key>obtained_from</key><string>identified_developer</string>
        <key>path</key><string>/Applications/Note.app</string>
        <key>signed_by</key><array><string>Developer: Skerry</string><string>Root</string></array>
      </dict>
      <dict><key>path</key><string>/System/Nameless.app</string></dict>
      <dict><key>_name</key><string>Dock</string>
            <key>path</key><string>/System/Library/Dock.app</string></dict>
    </array>
</dict></array></plist>)";

TEST(ApplicationsReport, GivesTheApplicationsThatHaveAName) {
  const Software applications = ReadApplicationsReport(REPORT);
  ASSERT_EQ(applications.size(), 2u);
  ExpectRecord(applications[0], R"json({
      "name": "Nöte & Pad", "version": "4.1", "location": "/Applications/Note.app",
      "softwareKey": "/Applications/Note.app", "source": "identified_developer",
      "signedBy": "Developer: Skerry", "architecture": "arch_arm_i64",
      "description": "Nöte 4.1, © Skerry", "installDate": 1682942400000})json");
  ExpectRecord(applications[1], R"json({
      "name": "Dock", "location": "/System/Library/Dock.app",
      "softwareKey": "/System/Library/Dock.app", "systemComponent": true})json");
}

TEST(ApplicationsReport, GivesNothingForTextThatIsNone) {
  const LogCapture log;
  const std::string text = REPORT;
  for (std::size_t length = 0; length < text.size() - 8; ++length) {
    EXPECT_TRUE(ReadApplicationsReport(text.substr(0, length)).empty()) << length;
  }
  for (const auto* odd : {"<plist/>", "<plist><array/></plist>", "<a>", "plain",
                          "<plist><array><dict><array/><key>_items</key></dict></array></plist>"}) {
    EXPECT_TRUE(ReadApplicationsReport(odd).empty()) << odd;
  }
}

/// A machine that the section sees instead of this one.
class SoftwareRegisteredSectionTest : public testing::Test {
 protected:
  SoftwareRegisteredSectionTest() { Norvik::Platform::SetMachineRoot(root_.Path().string()); }
  ~SoftwareRegisteredSectionTest() override { Norvik::Platform::SetMachineRoot(""); }

  Software Collect() {
    Software result(1);
    SoftwareRegisteredSection().GetInfo(result);
    return result;
  }

  TemporaryFolder root_;
};

TEST_F(SoftwareRegisteredSectionTest, ReadsThePackageDatabaseWithItsDates) {
  const auto list = root_ / "var/lib/dpkg/info/libfjord2:amd64.list";
  boost::filesystem::create_directories(list.parent_path());
  WriteFile(root_ / "var/lib/dpkg/status", STATUS);
  WriteFile(list, "");
  boost::filesystem::last_write_time(list, 1600000000);
  const Software software = Collect();
  ASSERT_EQ(software.size(), 4u);
  EXPECT_EQ(software[1].installDate, 1600000000);
  EXPECT_EQ(software[2].installDate, 0);
}

TEST_F(SoftwareRegisteredSectionTest, AsksForTheReportWhereThereIsNoPackageDatabase) {
  const auto tool = root_ / "system_profiler";
  WriteFile(tool, "#!/bin/sh\n[ \"$*\" = \"-xml SPApplicationsDataType\" ] && cat <<'END'\n" +
                      std::string(REPORT) + "\nEND\n");
  ASSERT_EQ(::chmod(tool.c_str(), 0700), 0);
  const std::string path = ::getenv("PATH");
  ::setenv("PATH", (root_.Path().string() + ":" + path).c_str(), 1);
  const Software software = Collect();
  ::setenv("PATH", path.c_str(), 1);
  EXPECT_EQ(software.size(), 3u);
}

}  // namespace
