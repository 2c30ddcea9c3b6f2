#include "module/RUD/RudFileHarvesterV2.h"

#include <boost/algorithm/string/replace.hpp>
#include <boost/format.hpp>

#include "support/Test.h"

namespace Norvik::KOB::V2 {
namespace {

using namespace Tests;

struct FileWalk {
  explicit FileWalk(const Platform::ReadingWay& way = Platform::UsualWay()) : harvester(way) {
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
  /// Paths of the files that the scan keeps, relative to the root.
  TextList Names() {
    TextList names;
    for (const auto& file : Scan()) {
      names.push_back(file.absolutePath.substr(root.size() + 1));
      const fs::path parent = fs::path(file.absolutePath).parent_path();
      EXPECT_EQ(harvester.GetBuffer().GetBufferPath().at(parent.string()), file.pathId);
    }
    return names;
  }

  TemporaryFolder folder;
  const fs::path root = folder / "root";
  LogCapture log;
  ScanConfiguration config;
  FileHarvester harvester;
};

struct FileHarvesterTest : testing::Test, FileWalk {};

TEST(FileHarvester, KeepsFilesByTheirNamesTheirPlacesAndItsConfiguration) {
  const std::map<std::string, ConfigScan> sets = {
      {"excluded folders", ExcludePath}, {"excluded files", ExcludeFile}, {"roots", IncludePath}};
  const Json& rows = DataOf("module/RUD/walks.json");
  for (std::size_t i = 0; i < 2 * rows.size(); ++i) {
    const Json& row = rows[i / 2];
    SCOPED_TRACE(row["name"]);
    FileWalk walk(i % 2 == 0 ? Platform::ReadingWay() : Platform::BulkWay());
    const auto inRoot = [&](const Json& text) {
      return boost::replace_all_copy(text.get<std::string>(), "$", walk.root.string());
    };
    const auto kept = row.value("kept", std::vector<Bytes>());
    for (const auto& name : kept) walk.Make(name);
    for (const auto& name : row.value("left", std::vector<Bytes>())) walk.Make(name);
    for (const auto& [name, target] : PartOf(row, "links").items()) {
      fs::create_symlink(target.get<std::string>(), walk.root / name);
    }
    for (const auto& [name, set] : sets) {
      if (row.contains(name) && row[name].is_null()) walk.config.erase(set);
      for (const Json& text : row.value(name, Json::array())) walk.config[set].insert(inRoot(text));
    }
    EXPECT_THAT(walk.Names(), UnorderedElementsAreArray(kept));
    for (const auto& [level, lines] : PartOf(row, "log").items()) {
      std::vector<Matcher<std::string>> beginnings;
      for (const Json& line : lines) {
        const std::string text = inRoot(line);
        const auto star = std::min(text.find('*'), text.size());
        beginnings.push_back(AllOf(StartsWith(text.substr(0, star)),
                                   HasSubstr(text.substr(std::min(star + 1, text.size())))));
      }
      EXPECT_THAT(walk.log.Texts(std::stoi(level)), UnorderedElementsAreArray(beginnings)) << level;
    }
  }
}

TEST_F(FileHarvesterTest, KeepsTheSameRowsInTheSameOrderEitherWayOfReading) {
  for (int i = 0; i < 300; ++i) {
    const std::string name = (boost::format("%1%/%2%/%3%.txt") % (i % 7) % (i % 3) % i).str();
    Make(name, std::string(static_cast<std::size_t>(i), 'x'));
    fs::last_write_time(root / name, i - 9);
  }
  ASSERT_EQ(::mkfifo((root / "pipe.gz").c_str(), 0600), 0);
  const auto rowsOf = [&](const Platform::ReadingWay& way, std::uint64_t bulk, std::uint64_t each) {
    FileHarvester other(way);
    other.SetConfigScan(config);
    other.Harvester();
    EXPECT_EQ(other.GetReadCalls().bulk, bulk);
    EXPECT_EQ(other.GetReadCalls().metadata, each);
    TextList rows;
    for (const auto& file : other.GetBuffer().GetBufferFile()) {
      rows.push_back((boost::format("%1% %2% %3% %4% %5%") % file.absolutePath % file.pathId %
                      file.extensionId % file.size % file.lastModification)
                         .str());
    }
    return rows;
  };
  const TextList rows = rowsOf({}, 0, 301);
  EXPECT_EQ(rows.size(), 301U);
  EXPECT_EQ(rowsOf(Platform::BulkWay(), 58, 0), rows) << "29 folders, and the end of each";
}

TEST_F(FileHarvesterTest, FillsTheRecord) {
  Make("a b/archive.tar.gz", "12345");
  const fs::path file = root / "a b/archive.tar.gz";
  fs::last_write_time(file, -3);
  config[IncludePath] = {root.string() + "/"};
  Make("caf\xC3\xA9.txt");
  config[ExcludeFile] = {"caf\xE9.txt"};  // in Latin-1, as a server may send it
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

struct ListeningLogger final : Common::Logger {
  explicit ListeningLogger(std::function<void(const std::string& text)> listener)
      : listen(std::move(listener)) {}
  void Log(Level level, const std::string& text, const char* file, int line,
           const char* function) override {
    next->Log(level, text, file, line, function);
    listen(text);
  }
  const std::function<void(const std::string& text)> listen;
  const std::shared_ptr<Common::Logger> next = GetInstance();
};

TEST_F(FileHarvesterTest, AFolderThatIsRemovedWhileItIsReadHasEnded) {
  Make("gone/tool.exe");
  Make("kept/x.txt");
  Common::Logger::SetInstance(std::make_shared<ListeningLogger>([&](const std::string& text) {
    if (text == "NOT IMPLEMENTED") fs::remove_all(root / "gone");  // as soon as the file is found
  }));
  EXPECT_THAT(Names(), UnorderedElementsAre("gone/tool.exe", "kept/x.txt"));
  EXPECT_THAT(log.Texts(5), IsEmpty());
}

TEST_F(FileHarvesterTest, AFolderMayBeClosedAndAnotherVanishOnTheWay) {
  for (const std::string name : {"1", "2"}) {
    Make(name + "/kept.txt");
    fs::create_directory(root / name / "closed");
    fs::permissions(root / name / "closed", fs::no_perms);
    fs::permissions(root / name, fs::all_all);
  }
  fs::permissions(folder.Path(), fs::all_all);
  fs::permissions(root, fs::all_all);
  // Runs as an ordinary user, who may not open the folder, even if root runs the test.
  const auto self = ::geteuid();
  ASSERT_EQ(self == 0 ? ::seteuid(65534) : 0, 0);
  const Scope asBefore([=] { EXPECT_EQ(::seteuid(self), 0); });
  // Removes the other folder as soon as one of them cannot be opened.
  Common::Logger::SetInstance(std::make_shared<ListeningLogger>([&](const std::string& text) {
    if (text.find("Permission denied") == std::string::npos) return;
    for (const char* name : {"1", "2"}) {
      if (text.find((root / name).string()) != std::string::npos) continue;
      for (const char* entry : {"/kept.txt", "/closed", ""}) {
        fs::remove(root / (std::string(name) + entry));
      }
    }
  }));
  EXPECT_THAT(Names(), ElementsAre(EndsWith("/kept.txt")));
  EXPECT_THAT(log.Texts(5), ElementsAre(AllOf(HasSubstr("/closed"), HasSubstr("denied")),
                                        HasSubstr("No such file or directory")));
}

TEST(RudBuffer, OfTwoSpellingsOfAnExtensionTheLastOnesIdStands) {
  FileHarvester harvester;
  ScanConfiguration config;
  config[IncludeExtension] = {".TXT", ".txt", "TXT", "txt"};
  harvester.SetConfigScan(config);
  EXPECT_THAT(harvester.GetBuffer().GetBufferExtension(),
              UnorderedElementsAre(std::make_pair("TXT", 2U), std::make_pair("XT", 4U)));
  config[IncludeExtension].insert("");
  EXPECT_THROW(harvester.SetConfigScan(config), std::out_of_range);
}

}  // namespace
}  // namespace Norvik::KOB::V2
