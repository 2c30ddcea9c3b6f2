#include "platform/ReplacementFile.h"

#include <memory>
#include <system_error>

#include "platform/FileSystem.h"
#include "platform/SystemChanges.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Platform;
using namespace Norvik::Tests;

ino_t InodeOf(const std::string& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_ino : 0;
}

/// What is synced in this process.
struct SyncWatch final : RealSystemChanges {
  int Sync(int descriptor) override {
    struct stat status {};
    EXPECT_EQ(::fstat(descriptor, &status), 0);
    syncs.emplace_back(status.st_ino, InodeOf(target) != 0);
    return RealSystemChanges::Sync(descriptor);
  }

  std::string target;
  std::vector<std::pair<ino_t, bool>> syncs;  ///< what was synced, and whether the target existed
};

TEST(ReplacementFile, TakesTheTargetsPlaceOnlyWhenItIsCommitted) {
  const TemporaryFolder folder;
  const std::string target = (folder / "host.jsonkob").string();
  WriteFile(target, "old");
  {
    const ReplacementFile file(target);
    WriteAll(file.Descriptor(), "half", 4);
    // A file that is not finished must not look like one that waits to be sent.
    EXPECT_NE(fs::path(file.Path()).extension(), ".jsonkob");
  }
  EXPECT_EQ(ContentOf(target), "old");
  EXPECT_THAT(FilesBelow(folder.Path()), ElementsAre("./host.jsonkob"));

  ReplacementFile file(target);
  WriteAll(file.Descriptor(), "new", 3);
  file.Commit();
  EXPECT_EQ(ContentOf(target), "new");
  EXPECT_THAT(FilesBelow(folder.Path()), ElementsAre("./host.jsonkob"));
  EXPECT_EQ(ModeOf(target), 0600u);
}

TEST(ReplacementFile, LeavesWhatIsThereIfItMayOnlyFillAGap) {
  const TemporaryFolder folder;
  const std::string target = (folder / "agent.key").string();
  for (const bool first : {true, false}) {
    ReplacementFile file(target);
    WriteAll(file.Descriptor(), first ? "one" : "two", 3);
    EXPECT_EQ(file.CommitIfAbsent(), first);
  }
  EXPECT_EQ(ContentOf(target), "one");
  EXPECT_THAT(FilesBelow(folder.Path()), ElementsAre("./agent.key"));
}

TEST(ReplacementFile, HasItsContentOnTheDiskBeforeItTakesTheTargetsPlace) {
  const TemporaryFolder folder;
  const std::string place = folder.Path().string();
  for (const bool ifAbsent : {false, true}) {
    const auto watch = std::make_shared<SyncWatch>();
    watch->target = place + (ifAbsent ? "/agent.key" : "/host.jsonkob");
    SetSystemChanges(watch);
    ReplacementFile file(watch->target);
    if (ifAbsent) {
      file.CommitIfAbsent();
    } else {
      file.Commit();
    }
    SetSystemChanges(nullptr);
    EXPECT_THAT(watch->syncs,
                ElementsAre(Pair(InodeOf(watch->target), false), Pair(InodeOf(place), true)))
        << watch->target;
  }
}

TEST(ReplacementFile, ThrowsWhereNoFileCanBe) {
  const TemporaryFolder folder;
  EXPECT_THROW(ReplacementFile((folder / "missing" / "file").string()), std::system_error);
  fs::create_directory(folder / "target");
  ReplacementFile file((folder / "target").string());
  EXPECT_THROW(file.Commit(), std::system_error);
}

TEST(ReplacementFile, LeftByAKilledProcessGoesAndNothingElse) {
  const TemporaryFolder folder;
  for (const auto* name : {"work", ".others"}) fs::create_directory(folder / name);
  for (const auto* name : {".a.zip.new-x1Y2z3", "work/.b.new-ABCDEF", "a.zip.new-x1Y2z3",
                           ".a.zip.new-x1", ".hidden", ".others/.b.new-ABCDEF", "work/b"}) {
    WriteFile(folder / name, "text");
  }
  RemoveLeftReplacements(folder.Path().string());
  EXPECT_THAT(FilesBelow(folder.Path()),
              UnorderedElementsAre("./a.zip.new-x1Y2z3", "./.a.zip.new-x1", "./.hidden",
                                   ".others/.b.new-ABCDEF", "work/b"));
  RemoveLeftReplacements((folder / "missing").string());
}

TEST(OpenRegularFile, RefusesWhatIsNoFile) {
  const TemporaryFolder folder;
  WriteFile(folder / "file", "text");
  fs::create_symlink(folder / "file", folder / "link");
  ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
  for (const auto* name : {"link", "pipe", ".", "missing"}) {
    EXPECT_THROW(OpenRegularFile((folder / name).string()), std::system_error) << name;
  }
  EXPECT_TRUE(OpenRegularFile((folder / "file").string()).IsOpen());
}

}  // namespace
