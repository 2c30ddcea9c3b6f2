#include "common/files/DeleteExtension.h"

#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

class DeleteExtensionTest : public testing::Test {
 protected:
  void Make(const TextList& names) {
    for (const auto& name : names) {
      fs::create_directories((folder_ / name).parent_path());
      WriteFile(folder_ / name, "content");
    }
  }
  std::set<std::string> Left() const { return FilesBelow(folder_.Path()); }

  TemporaryFolder folder_;
  LogCapture log_;
};

TEST_F(DeleteExtensionTest, DeletesByTheWholeExtensionOutsideOfWhatIsExcluded) {
  for (const Json& row : DataOf("common/files/deleted-extensions.json")) {
    fs::remove_all(folder_.Path());
    Make(row["files"]);
    std::vector<fs::path> excluded;
    for (const std::string name : PartOf(row, "excluded")) excluded.push_back(folder_ / name);
    DeleteExtensionInPath(row["extension"], folder_ / row.value("in", "."), excluded);
    EXPECT_EQ(Left(), row["left"].get<std::set<std::string>>()) << row["name"];
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
