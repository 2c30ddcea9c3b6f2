#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <utime.h>

#include <sstream>

#include "common/inventory/ApplicationsReport.h"
#include "common/inventory/PackageDatabase.h"
#include "common/inventory/SoftwareRegisteredSection.h"
#include "platform/MachinePath.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::TemporaryFolder;
using Norvik::Tests::WriteFile;
using Software = std::vector<SoftwareRegisteredInfo>;

constexpr char STATUS[] = R"(Package: libfjord2
Status: install ok installed
Priority: optional
Section: libs
Installed-Size: 2048
Maintainer: Fjord Team <fjord@example.org>
Architecture: amd64
Multi-Arch: same
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

Software ReadStatus(const std::string& text) {
  std::istringstream stream(text);
  return ReadPackageStatus(stream, [](const std::string& name, const std::string& architecture) {
    return name == "libfjord2" && architecture == "amd64" ? 1700000000 : 0;
  });
}

TEST(PackageDatabase, GivesTheInstalledPackages) {
  const Software packages = ReadStatus(STATUS);
  ASSERT_EQ(packages.size(), 3u);
  const auto& package = packages[0];
  EXPECT_EQ(package.name, "libfjord2");
  EXPECT_EQ(package.productCode, "libfjord2");
  EXPECT_EQ(package.softwareKey, "libfjord2:amd64");
  EXPECT_EQ(package.version, "1:1.2-3+b1");
  EXPECT_EQ(package.publisher, "Fjord Team <fjord@example.org>");
  EXPECT_EQ(package.sizeBytes, 2048u * 1024);
  EXPECT_EQ(package.architecture, "amd64");
  EXPECT_EQ(package.source, "fjord (1.2-3)");
  EXPECT_EQ(package.description, "shared library: the fjord");
  EXPECT_EQ(package.category, "libs");
  EXPECT_EQ(package.url, "https://fjord.example.org/");
  EXPECT_EQ(package.installDate, 1700000000);
  EXPECT_FALSE(package.systemComponent);
  EXPECT_EQ(packages[1].name, "skerry");
  EXPECT_TRUE(packages[1].systemComponent);
  EXPECT_EQ(packages[1].sizeBytes, 0u);
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
<plist version="1.0">
<array>
  <dict>
    <key>_SPCommandLineArguments</key><array><string>-xml</string></array>
    <key>_dataType</key><string>SPApplicationsDataType</string>
    <key>_items</key>
    <array>
      <dict>
        <key>_name</key><string>Nöte &amp; Pad</string>
        <key>arch_kind</key><string>arch_arm_i64</string>
        <key>info</key><string>Nöte 4.1, © Skerry</string>
        <key>lastModified</key><date>2023-05-01T12:00:00Z</date>
        <key>obtained_from</key><string>identified_developer</string>
        <key>path</key><string>/Applications/Note.app</string>
        <key>signed_by</key>
        <array><string>Developer: Skerry</string><string>Root</string></array>
        <key>version</key><string>4.1</string>
      </dict>
      <dict><key>path</key><string>/System/Nameless.app</string></dict>
      <dict><key>_name</key><string>Dock</string>
            <key>path</key><string>/System/Library/Dock.app</string></dict>
    </array>
  </dict>
</array>
</plist>)";

TEST(ApplicationsReport, GivesTheApplicationsThatHaveAName) {
  const Software applications = ReadApplicationsReport(REPORT);
  ASSERT_EQ(applications.size(), 2u);
  const auto& application = applications[0];
  EXPECT_EQ(application.name, "Nöte & Pad");
  EXPECT_EQ(application.version, "4.1");
  EXPECT_EQ(application.location, "/Applications/Note.app");
  EXPECT_EQ(application.softwareKey, "/Applications/Note.app");
  EXPECT_EQ(application.source, "identified_developer");
  EXPECT_EQ(application.signedBy, "Developer: Skerry");
  EXPECT_EQ(application.architecture, "arch_arm_i64");
  EXPECT_EQ(application.description, "Nöte 4.1, © Skerry");
  EXPECT_EQ(application.installDate, 1682942400);
  EXPECT_FALSE(application.systemComponent);
  EXPECT_EQ(applications[1].name, "Dock");
  EXPECT_EQ(applications[1].installDate, 0);
  EXPECT_TRUE(applications[1].systemComponent);
}

TEST(ApplicationsReport, GivesNothingForTextThatIsNone) {
  const Norvik::Tests::LogCapture log;
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
  SoftwareRegisteredSectionTest() {
    boost::filesystem::create_directories(root_ / "var/lib/dpkg/info");
    Norvik::Platform::SetMachineRoot(root_.Path().string());
  }
  ~SoftwareRegisteredSectionTest() override { Norvik::Platform::SetMachineRoot(""); }

  Software Collect() {
    Software result(1);
    SoftwareRegisteredSection().GetInfo(result);
    return result;
  }

  TemporaryFolder root_;
};

TEST_F(SoftwareRegisteredSectionTest, ReadsThePackageDatabaseWithItsDates) {
  WriteFile(root_ / "var/lib/dpkg/status", STATUS);
  const auto list = root_ / "var/lib/dpkg/info/libfjord2:amd64.list";
  WriteFile(list, "");
  const utimbuf times{1600000000, 1600000000};
  ASSERT_EQ(::utime(list.c_str(), &times), 0);
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
