#include "common/files/DeleteExtension.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;
using testing::ElementsAre;
namespace fs = boost::filesystem;

class DeleteExtensionTest : public testing::Test {
 protected:
  void Make(const std::vector<std::string>& names) {
    for (const auto& name : names) {
      fs::create_directories((folder_ / name).parent_path());
      WriteFile(folder_ / name, "content");
    }
  }
  std::set<std::string> Left() const { return FilesBelow(folder_.Path()); }

  TemporaryFolder folder_;
  LogCapture log_;
};

TEST_F(DeleteExtensionTest, DeletesByTheWholeExtensionWithOrWithoutItsDot) {
  for (const auto* extension : {".log", "log"}) {
    Make({"a.log", "a.LOG", "a.logs", "alog", ".log", "a.log.txt", "b/c/d.log", "b/e.x.log"});
    DeleteExtensionInPath(extension, folder_.Path(), {});
    EXPECT_THAT(Left(), ElementsAre("./.log", "./a.LOG", "./a.log.txt", "./a.logs", "./alog"));
  }
}

TEST_F(DeleteExtensionTest, LeavesExcludedEntriesAndWhatIsBelowThem) {
  using Names = std::vector<std::string>;
  const std::tuple<const char*, Names, std::set<std::string>> cases[] = {
      {"keep", {"missing"}, {"./d.x", "keeper/deep/c.x"}},
      {".", {"keep/", "keeper/../d.x", "missing"}, {"./d.x", "keep/a.x", "keep/deep/b.x"}},
      // The dot entries of a listing are no entries.
      {"keeper", {"keeper/.", "keeper/.."}, {"./d.x", "keep/a.x", "keep/deep/b.x"}},
      // The folder is itself excluded, or one above it.
      {"keep/deep", {"keep"}, {"./d.x", "keep/a.x", "keep/deep/b.x", "keeper/deep/c.x"}},
      {"keep/deep", {"keep/deep"}, {"./d.x", "keep/a.x", "keep/deep/b.x", "keeper/deep/c.x"}},
  };
  for (const auto& [folder, names, left] : cases) {
    Make({"keep/a.x", "keep/deep/b.x", "keeper/deep/c.x", "d.x"});
    std::vector<fs::path> excluded;
    for (const auto& name : names) excluded.push_back(folder_ / name);
    DeleteExtensionInPath("x", folder_ / folder, excluded);
    EXPECT_EQ(Left(), left) << folder;
  }
}

TEST_F(DeleteExtensionTest, NeitherFollowsNorDeletesWhatIsNoFile) {
  Make({"outside/a.x", "inside/b.x"});
  const fs::path inside = folder_ / "inside";
  fs::create_directory_symlink(folder_ / "outside", inside / "folder.x");
  fs::create_symlink(folder_ / "outside" / "a.x", inside / "file.x");
  fs::create_directory_symlink(folder_ / "outside", folder_ / "start");
  fs::create_directories(inside / "empty.x");
  ASSERT_EQ(::mkfifo((inside / "pipe.x").c_str(), 0600), 0);
  DeleteExtensionInPath("x", inside, {});
  DeleteExtensionInPath("x", folder_ / "start", {});
  EXPECT_THAT(Left(), ElementsAre("./start", "inside/file.x", "inside/folder.x", "inside/pipe.x",
                                  "outside/a.x"));
  EXPECT_TRUE(fs::exists(inside / "empty.x"));
}

TEST_F(DeleteExtensionTest, LogsWhatItCannotDoAndGoesOn) {
  std::string deep;
  for (int level = 0; level < 210; ++level) deep += "d/";
  Make({deep + "hidden.x", "e.x"});
  DeleteExtensionInPath("x", folder_.Path(), {});
  DeleteExtensionInPath("x", folder_ / "missing", {});
  DeleteExtensionInPath("", folder_.Path(), {});
  DeleteExtensionInPath(".", folder_.Path(), {});
  EXPECT_EQ(log_.Texts(Logger::LEVEL_WARNING).size(), 4u);
  EXPECT_FALSE(fs::exists(folder_ / "e.x"));
  EXPECT_TRUE(fs::exists(folder_ / deep / "hidden.x"));
}

}  // namespace
