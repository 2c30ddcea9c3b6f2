#include "common/files/DeleteExtension.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::FilesBelow;
using Norvik::Tests::LogCapture;
using Norvik::Tests::TemporaryFolder;
using Norvik::Tests::WriteFile;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = boost::filesystem;

class DeleteExtensionTest : public testing::Test {
 protected:
  void Make(const std::string& name) {
    fs::create_directories((folder_ / name).parent_path());
    WriteFile(folder_ / name, "content");
  }
  std::set<std::string> Left() const { return FilesBelow(folder_.Path()); }

  TemporaryFolder folder_;
  LogCapture log_;
};

TEST_F(DeleteExtensionTest, DeletesByTheWholeExtensionWithOrWithoutItsDot) {
  for (const auto* extension : {".log", "log"}) {
    for (const auto* name :
         {"a.log", "a.LOG", "a.logs", "alog", ".log", "a.log.txt", "b/c/d.log", "b/e.x.log"}) {
      Make(name);
    }
    DeleteExtensionInPath(extension, folder_.Path(), {});
    EXPECT_THAT(Left(), ElementsAre("./.log", "./a.LOG", "./a.log.txt", "./a.logs", "./alog"));
  }
}

TEST_F(DeleteExtensionTest, LeavesExcludedEntriesAndWhatIsBelowThem) {
  for (const auto* name : {"keep/a.x", "keep/deep/b.x", "keeper/c.x", "d.x", "e.x"}) Make(name);
  DeleteExtensionInPath(
      "x", folder_.Path(),
      {(folder_ / "keep").string() + "/", folder_ / "keeper" / ".." / "d.x", folder_ / "missing"});
  EXPECT_THAT(Left(), ElementsAre("./d.x", "keep/a.x", "keep/deep/b.x"));
}

TEST_F(DeleteExtensionTest, TakesTheDotEntriesOfAListingForNoEntries) {
  Make("outbox/host.jsonkob");
  Make("outbox/old/host.jsonkob");
  const fs::path outbox = folder_ / "outbox";
  DeleteExtensionInPath(".jsonkob", outbox, {outbox / ".", outbox / ".."});
  EXPECT_THAT(Left(), IsEmpty());
}

TEST_F(DeleteExtensionTest, DeletesNothingInAFolderThatIsItselfExcluded) {
  Make("opt/tools/a.x");
  DeleteExtensionInPath("x", folder_ / "opt" / "tools", {folder_ / "opt"});
  DeleteExtensionInPath("x", folder_ / "opt" / "tools", {folder_ / "opt" / "tools"});
  EXPECT_THAT(Left(), ElementsAre("opt/tools/a.x"));
}

TEST_F(DeleteExtensionTest, NeitherFollowsNorDeletesLinks) {
  Make("outside/a.x");
  Make("inside/b.x");
  fs::create_directory_symlink(folder_ / "outside", folder_ / "inside" / "folder.x");
  fs::create_symlink(folder_ / "outside" / "a.x", folder_ / "inside" / "file.x");
  fs::create_directory_symlink(folder_ / "outside", folder_ / "start");
  DeleteExtensionInPath("x", folder_ / "inside", {});
  DeleteExtensionInPath("x", folder_ / "start", {});
  EXPECT_THAT(Left(), ElementsAre("./start", "inside/file.x", "inside/folder.x", "outside/a.x"));
}

TEST_F(DeleteExtensionTest, LeavesWhatIsNoFile) {
  fs::create_directories(folder_ / "folder.x");
  ASSERT_EQ(::mkfifo((folder_ / "pipe.x").c_str(), 0600), 0);
  DeleteExtensionInPath("x", folder_.Path(), {});
  EXPECT_THAT(Left(), ElementsAre("./pipe.x"));
  EXPECT_TRUE(fs::exists(folder_ / "folder.x"));
}

TEST_F(DeleteExtensionTest, LogsWhatItCannotDoAndGoesOn) {
  fs::path deep = folder_.Path();
  for (int level = 0; level < 210; ++level) deep /= "d";
  fs::create_directories(deep);
  WriteFile(deep / "hidden.x", "");
  Make("e.x");
  DeleteExtensionInPath("x", folder_.Path(), {});
  DeleteExtensionInPath("x", folder_ / "missing", {});
  DeleteExtensionInPath("", folder_.Path(), {});
  DeleteExtensionInPath(".", folder_.Path(), {});
  EXPECT_EQ(log_.Texts(Logger::LEVEL_WARNING).size(), 4u);
  EXPECT_FALSE(fs::exists(folder_ / "e.x"));
  EXPECT_TRUE(fs::exists(deep / "hidden.x"));
}

}  // namespace
