#include "module/Actions/Mac/AdministeredMachine.h"
#include "support/Files.h"
#include "support/RecordFiller.h"

namespace Norvik::KOB {
namespace {

using namespace Tests;
namespace fs = boost::filesystem;

using RemoteFilesTest = AdministeredMachine;

TEST_F(RemoteFilesTest, FoldersAreListed) {
  const tests::ScopedLocale locale("C.UTF-8");
  AddFile("root/in/café", "1234");
  AddFile("root/in/.hidden");
  fs::create_directories(folder / "root/in/.sub");
  fs::create_directories(folder / "root/in/a b");
  fs::create_directories(folder / "root/empty");
  fs::create_symlink("gone", folder / "root/in/dangling");
  fs::create_directory_symlink("in", folder / "root/link");
  fs::last_write_time(folder / "root/in/café", 1767225600);
  fs::last_write_time(folder / "root/in/.hidden", -1);
  Follow("listings.txt");
}

TEST_F(RemoteFilesTest, FilesAreDeletedAndOnlyAFailureTellsOfEach) {
  for (const char* name : {"a", "b", "c|d", "quo\"te '\n"}) AddFile(std::string("root/x/") + name);
  fs::create_directories(folder / "root/x/empty");
  AddFile("root/full/a");
  Follow("deletions.txt");
  EXPECT_EQ(FilesBelow(folder / "root"), std::set<std::string>{"full/a"});
}

TEST_F(RemoteFilesTest, AnExtensionGoesFromTheUsersFolders) {
  for (const char* path : {"Users/ada/deep/a.tmp", "Users/Shared/b.tmp", "Users/ada/a.txt",
                           "Users/c.tmp", "Library/d.tmp"}) {
    AddFile(std::string("root/") + path);
  }
  const auto ends = [](const std::string& missing) {
    return Lines{"status 7", "status 2",
                 "warning Directory " + missing + " does not exist or is not accessible"};
  };
  EXPECT_EQ(RehearseAndAsk(1001, {{"ext", "tmp"}}), std::make_pair(ends("/home"), ends("/home")));
  EXPECT_EQ(FilesBelow(folder / "root"),
            (std::set<std::string>{"Users/ada/a.txt", "Users/c.tmp", "Library/d.tmp"}));
  AddFile("root/home/e.txt");
  fs::remove_all(folder / "root/Users");
  EXPECT_EQ(Ask(1001, {{"ext", ".txt"}}), ends("/Users"));
  EXPECT_EQ(FilesBelow(folder / "root"), std::set<std::string>{"Library/d.tmp"});
  EXPECT_TRUE(host.log.Holds(4, "Delete extension .txt finished"));
}

}  // namespace
}  // namespace Norvik::KOB
