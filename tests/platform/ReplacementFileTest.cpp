#include "platform/ReplacementFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <system_error>

#include "platform/FileSystem.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Platform;
using Norvik::Tests::TemporaryFolder;

std::string ContentOf(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

long EntriesOf(const TemporaryFolder& folder) {
  return std::distance(std::filesystem::directory_iterator(folder.Path().string()), {});
}

TEST(ReplacementFile, TakesTheTargetsPlaceOnlyWhenItIsCommitted) {
  const TemporaryFolder folder;
  const std::string target = (folder / "host.jsonkob").string();
  std::ofstream(target) << "old";
  {
    const ReplacementFile file(target);
    WriteAll(file.Descriptor(), "half", 4);
    // A file that is not finished must not look like one that waits to be sent.
    EXPECT_NE(std::filesystem::path(file.Path()).extension(), ".jsonkob");
    EXPECT_EQ(ContentOf(target), "old");
  }
  EXPECT_EQ(ContentOf(target), "old");
  EXPECT_EQ(EntriesOf(folder), 1);

  ReplacementFile file(target);
  WriteAll(file.Descriptor(), "new", 3);
  file.Commit();
  EXPECT_EQ(ContentOf(target), "new");
  EXPECT_EQ(EntriesOf(folder), 1);
  struct stat status {};
  ASSERT_EQ(::stat(target.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
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
  EXPECT_EQ(EntriesOf(folder), 1);
}

TEST(ReplacementFile, RaisesWhereNoFileCanBe) {
  const TemporaryFolder folder;
  EXPECT_THROW(ReplacementFile((folder / "missing" / "file").string()), std::system_error);
  std::filesystem::create_directories((folder / "target").string());
  ReplacementFile file((folder / "target").string());
  EXPECT_THROW(file.Commit(), std::system_error);
}

TEST(OpenRegularFile, RefusesWhatIsNoFile) {
  const TemporaryFolder folder;
  const std::string link = (folder / "link").string();
  const std::string pipe = (folder / "pipe").string();
  std::ofstream((folder / "file").string()) << "text";
  std::filesystem::create_symlink((folder / "file").string(), link);
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THROW(OpenRegularFile(link), std::system_error);
  EXPECT_THROW(OpenRegularFile(pipe), std::system_error);
  EXPECT_THROW(OpenRegularFile(folder.Path().string()), std::system_error);
  EXPECT_THROW(OpenRegularFile((folder / "missing").string()), std::system_error);
  EXPECT_TRUE(OpenRegularFile((folder / "file").string()).IsOpen());
}

}  // namespace
