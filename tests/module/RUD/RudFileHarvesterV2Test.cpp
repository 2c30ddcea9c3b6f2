#include "module/RUD/RudFileHarvesterV2.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <boost/filesystem/operations.hpp>

#include "support/Cases.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace Norvik::KOB::V2 {
namespace {

namespace fs = boost::filesystem;
using namespace Tests;
using namespace testing;

class FileHarvesterTest : public testing::Test {
 protected:
  FileHarvesterTest() {
    config[ExcludePath];
    config[ExcludeFile] = {"left.txt"};
    config[IncludeExtension] = {".txt", ".TXT", ".gz", ".exe"};
    config[IncludePath] = {root.string()};
    fs::create_directory(root);
  }
  void Make(const std::string& name, const std::string& content = "") {
    fs::create_directories((root / name).parent_path());
    WriteFile(root / name, content);
  }
  std::vector<RudFileInfo>& Scan() {
    harvester.SetConfigScan(config);
    harvester.Harvester();
    return harvester.GetBuffer().GetBufferFile();
  }
  /// Paths below the root of what the scan keeps.
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const auto& file : Scan()) {
      names.push_back(file.absolutePath.substr(root.size() + 1));
    }
    return names;
  }

  TemporaryFolder folder;
  const fs::path root = folder / "root";
  LogCapture log;
  ScanConfiguration config;
  FileHarvester harvester;
};

TEST_F(FileHarvesterTest, KeepsAFileByItsNameAndItsPlace) {
  const auto rows = DataOf("module/RUD/names.json").get<std::vector<std::pair<Bytes, bool>>>();
  config[ExcludePath] = {(root / "excluded").string(), (root / "slash/").string()};
  for (const auto& [name, kept] : rows) Make(name);
  const auto names = Names();
  for (const auto& [name, kept] : rows) {
    EXPECT_EQ(std::count(names.begin(), names.end(), name), kept) << name;
  }
  EXPECT_THAT(log.Texts(3),
              UnorderedElementsAre("RUD: IsExcludedFile - Excluded file by setting - left.txt",
                                   "RUD: IsExcludedFile - Excluded file by setting - left.txt",
                                   "RUD: IsExcludedFolder - Excluded folder by setting - " +
                                       (root / "excluded").string()));
}

TEST_F(FileHarvesterTest, LinksAreNeitherFollowedNorListed) {
  Make("real.txt");
  Make("folder/inside.txt");
  fs::create_symlink(root / "real.txt", root / "link.txt");
  fs::create_symlink(root, root / "folder/loop");
  fs::create_symlink(root / "nowhere", root / "dangling.txt");
  EXPECT_THAT(Names(), UnorderedElementsAre("real.txt", "folder/inside.txt"));
}

TEST_F(FileHarvesterTest, FillsTheRecord) {
  Make("a b/archive.tar.gz", "12345");
  const fs::path file = root / "a b/archive.tar.gz";
  fs::last_write_time(file, -3);
  config[IncludePath] = {root.string() + "/"};
  const auto& files = Scan();
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].absolutePath, file.string());
  EXPECT_EQ(files[0].fileName, "archive.tar");
  EXPECT_EQ(files[0].size, 5);
  EXPECT_EQ(files[0].lastModification, -3000);
  EXPECT_FALSE(files[0].isExecutable);
  auto& buffer = harvester.GetBuffer();
  EXPECT_EQ(buffer.GetBufferPath().at((root / "a b").string()), files[0].pathId);
  EXPECT_EQ(buffer.GetIdExtension("GZ"), files[0].extensionId);
}

TEST_F(FileHarvesterTest, FoldersAreWalkedDepthFirstTheLastOneFound) {
  for (const char* name : {"1/x.txt", "1/deep/x.txt", "2/x.txt", "2/deep/x.txt"}) Make(name);
  fs::path last;
  for (const auto& entry : fs::directory_iterator(root)) last = entry.path().filename();
  const std::string other = last == "1" ? "2" : "1";
  EXPECT_THAT(Names(), ElementsAre(last.string() + "/x.txt", last.string() + "/deep/x.txt",
                                   other + "/x.txt", other + "/deep/x.txt"));
}

TEST_F(FileHarvesterTest, APipeIsKeptWithoutASize) {
  ASSERT_EQ(::mkfifo((root / "pipe.txt").c_str(), 0600), 0);
  const auto& files = Scan();
  ASSERT_EQ(files.size(), 1U);
  EXPECT_EQ(files[0].size, 0);
  EXPECT_GT(files[0].lastModification, 0);
  EXPECT_THAT(log.Texts(3), ElementsAre("RUD: file_size error - Operation not permitted - " +
                                        (root / "pipe.txt").string()));
}

TEST_F(FileHarvesterTest, WhatCannotBeReadIsReportedAndTheWalkGoesOn) {
  Make("kept.txt");
  fs::create_symlink(folder / "loop", folder / "loop");
  const struct {
    const char* root;
    const char* reason;
  } rows[] = {{"vanished", "No such file or directory"},
              {"loop", "Too many levels of symbolic links"},
              {"root/kept.txt", "Not a directory"}};
  for (const auto& row : rows) config[IncludePath].insert((folder / row.root).string());
  EXPECT_THAT(Names(), ElementsAre("kept.txt"));
  EXPECT_THAT(log.Texts(5), SizeIs(3));
  for (const auto& row : rows) {
    EXPECT_THAT(log.Texts(5),
                Contains(AllOf(StartsWith("Cannot open directory " + (folder / row.root).string()),
                               HasSubstr(row.reason))));
  }
}

/// Opens no folder that an ordinary user may not open, whoever runs the test.
class OrdinaryUser {
 public:
  OrdinaryUser() { EXPECT_EQ(wasRoot_ ? ::seteuid(65534) : 0, 0); }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;
  ~OrdinaryUser() { EXPECT_EQ(wasRoot_ ? ::seteuid(0) : 0, 0); }

 private:
  const bool wasRoot_ = ::getuid() == 0;
};

/// Removes, as soon as one of the folders cannot be opened, all others beside the one on the way.
struct Remover final : Common::Logger {
  Remover(fs::path below, std::shared_ptr<Common::Logger> to) : root(std::move(below)), next(to) {}
  void Log(Level level, const std::string& text, const char* file, int line,
           const char* function) override {
    next->Log(level, text, file, line, function);
    if (text.find("Permission denied") == std::string::npos) return;
    for (const char* name : {"1", "2"}) {
      if (text.find((root / name).string()) != std::string::npos) continue;
      for (const char* entry : {"/kept.txt", "/closed", ""}) {
        fs::remove(root / (std::string(name) + entry));
      }
    }
  }
  const fs::path root;
  const std::shared_ptr<Common::Logger> next;
};

TEST_F(FileHarvesterTest, AFolderMayBeClosedAndAnotherVanishOnTheWay) {
  for (const std::string name : {"1", "2"}) {
    Make(name + "/kept.txt");
    fs::create_directory(root / name / "closed");
    fs::permissions(root / name / "closed", fs::no_perms);
    fs::permissions(root / name, fs::all_all);
  }
  fs::permissions(folder.Path(), fs::all_all);
  fs::permissions(root, fs::all_all);
  const OrdinaryUser user;
  Common::Logger::SetInstance(std::make_shared<Remover>(root, Common::Logger::GetInstance()));
  EXPECT_THAT(Names(), ElementsAre(EndsWith("/kept.txt")));
  EXPECT_THAT(log.Texts(5), ElementsAre(AllOf(HasSubstr("/closed"), HasSubstr("denied")),
                                        HasSubstr("No such file or directory")));
}

TEST_F(FileHarvesterTest, AnExecutablesDetailsAreAskedForAndNothingElseIs) {
  Make("tool.exe");
  Make("plain.txt");
  EXPECT_EQ(Scan().size(), 2U);
  EXPECT_THAT(log.Texts(4),
              AllOf(Contains("NOT IMPLEMENTED").Times(2), Contains("Init scan of " + root.string()),
                    Contains(StartsWith("Scan finished in "))));
}

TEST_F(FileHarvesterTest, OverlappingRootsListTheirFilesTwice) {
  Make("below/x.txt");
  config[IncludePath].insert((root / "below").string());
  EXPECT_THAT(Names(), ElementsAre("below/x.txt", "below/x.txt"));
}

TEST_F(FileHarvesterTest, NeedsItsSetsAndNoEmptyExtension) {
  Make("x.txt");
  config.erase(ExcludeFile);
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THAT(log.Texts(5),
              Contains(StartsWith("Error processing file " + (root / "x.txt").string())));
  config.erase(ExcludePath);
  EXPECT_THAT(Names(), IsEmpty());
  EXPECT_THAT(log.Texts(2), ElementsAre(StartsWith("RUDHarvester exception: ")));
  config[IncludeExtension].insert("");
  EXPECT_THROW(harvester.SetConfigScan(config), std::out_of_range);
}

TEST(RudBuffer, GivesIdsOfItsOwn) {
  RudBuffer buffer(1);
  EXPECT_THAT(buffer.GetBufferCompany(), ElementsAre(std::make_pair("", 0U)));
  EXPECT_EQ(buffer.AddExtension("TXT"), 1U);
  EXPECT_EQ(buffer.AddExtension("TXT"), 2U);
  EXPECT_EQ(buffer.GetIdExtension("TXT"), 2U);
  EXPECT_THROW(buffer.GetIdExtension("PDF"), std::out_of_range);
  EXPECT_EQ(buffer.AddParentPath("/a"), 1U);
  EXPECT_EQ(buffer.AddParentPath("/a"), 1U);
  EXPECT_EQ(buffer.AddParentPath("/b"), 2U);
  EXPECT_EQ(buffer.AddCompanyName(""), 0U);
  EXPECT_EQ(buffer.AddCompanyName("Maker"), 1U);
}

TEST(RudBuffer, OfTwoSpellingsOfAnExtensionTheLastOnesIdStands) {
  FileHarvester harvester;
  ScanConfiguration config;
  config[IncludeExtension] = {".TXT", ".txt", "TXT", "txt"};
  harvester.SetConfigScan(config);
  EXPECT_THAT(harvester.GetBuffer().GetBufferExtension(),
              UnorderedElementsAre(std::make_pair("TXT", 2U), std::make_pair("XT", 4U)));
}

}  // namespace
}  // namespace Norvik::KOB::V2
