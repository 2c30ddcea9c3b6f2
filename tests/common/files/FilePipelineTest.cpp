#include "common/files/FilePipeline.h"

#include <random>

#include "common/files/Archive.h"
#include "common/files/FileSealer.h"
#include "common/files/Paths.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

/// Content that does not shrink when it is compressed.
std::string Noise(std::size_t size) {
  std::mt19937 random;
  std::string noise(size, '\0');
  for (char& byte : noise) byte = static_cast<char>(random());
  return noise;
}

class FilePipelineTest : public Test {
 protected:
  FilePipelineTest() { Paths::SetDataFolder(folder_ / "data"); }

  fs::path Outbox() const { return folder_ / "data" / "outbox"; }

  TemporaryFolder folder_;
  const fs::path source_ = folder_ / "source";
  const fs::path target_ = folder_ / "target";
  LogCapture log_;
};

using Step = std::function<bool(const fs::path&, const fs::path&)>;
const std::pair<const char*, Step> STEPS[] = {
    {"compress", CompressFile}, {"encrypt", AgentEncryptFile}, {"copy", CopyFileToDestination}};

TEST_F(FilePipelineTest, BringsADocumentThroughAllStepsInPlaceOfAnEarlierOne) {
  const std::string document = Noise(200000) + std::string(200000, 'a');
  WriteFile(folder_ / "host.json", document);
  ASSERT_TRUE(CompressFile(folder_ / "host.json", folder_ / "host.zip"));
  EXPECT_LT(fs::file_size(folder_ / "host.zip"), 250000u);
  ASSERT_TRUE(AgentEncryptFile(folder_ / "host.zip", folder_ / "host.jsonkob"));
  fs::create_directories(Outbox());
  WriteFile(Outbox() / "host.jsonkob", "earlier");
  ASSERT_TRUE(MoveToOutbox(folder_ / "host.jsonkob", false));
  EXPECT_FALSE(fs::exists(folder_ / "host.jsonkob"));
  EXPECT_THAT(FilesBelow(Outbox()), ElementsAre("./host.jsonkob"));

  FileSealer(folder_ / "data" / "keys").Open(Outbox() / "host.jsonkob", folder_ / "opened.zip");
  EXPECT_TRUE(ReadArchive(folder_ / "opened.zip") == document);
  EXPECT_THAT(log_.Texts(Logger::LEVEL_ERROR), IsEmpty());
}

TEST_F(FilePipelineTest, ReplacesAnEarlierTargetAndTheSourceItselfButNothingForABadSource) {
  fs::create_directory(folder_ / "folder");
  for (const auto& [name, step] : STEPS) {
    SCOPED_TRACE(name);
    WriteFile(source_, "content");
    WriteFile(target_, std::string(1000, 'o'));
    EXPECT_TRUE(step(source_, target_));
    const std::string separate = ContentOf(target_);
    EXPECT_LT(separate.size(), 1000u);
    EXPECT_FALSE(step(folder_ / "missing", target_));
    EXPECT_FALSE(step(folder_ / "folder", target_));
    EXPECT_FALSE(step(source_, folder_ / "no" / "target"));
    EXPECT_FALSE(step(source_, folder_ / "folder"));
    EXPECT_TRUE(step(source_, source_));
    EXPECT_EQ(ContentOf(source_).size(), separate.size());
    EXPECT_EQ(ContentOf(target_), separate);
  }
  EXPECT_FALSE(MoveToOutbox(folder_ / "missing", boost::none));
  EXPECT_FALSE(MoveToOutbox(folder_ / "folder", boost::none));
  EXPECT_THAT(FilesBelow(Outbox()), IsEmpty());
}

TEST_F(FilePipelineTest, LeavesTheTargetAloneWhenTheDiskIsFull) {
  WriteFile(source_, Noise(300000));
  WriteFile(folder_ / "key", "");
  ASSERT_TRUE(AgentEncryptFile(folder_ / "key", folder_ / "key"));
  fs::create_directory(folder_ / "targets");
  WriteFile(folder_ / "targets" / "target", "earlier");
  for (const rlim_t size : {0u, 100u, 100000u}) {
    for (const auto& [name, step] : STEPS) {
      const FullDisk full(size);
      EXPECT_FALSE(step(source_, folder_ / "targets" / "target")) << name;
      EXPECT_FALSE(step(source_, folder_ / "targets" / "new")) << name;
    }
  }
  EXPECT_EQ(ContentOf(folder_ / "targets" / "target"), "earlier");
  EXPECT_THAT(FilesBelow(folder_ / "targets"), ElementsAre("./target"));
  EXPECT_THAT(log_.Texts(Logger::LEVEL_ERROR), SizeIs(18));
}

TEST_F(FilePipelineTest, MovesIntoTheOutboxFromAnotherFileSystemWholeOrNotAtAll) {
  // Memory of its own on most systems; where it is not, the file is renamed as ever.
  const fs::path source = fs::path("/dev/shm") / folder_.Path().filename();
  const std::string content = Noise(300000);
  WriteFile(source, content);
  fs::create_directories(Outbox());
  {
    const FullDisk full(1000);
    if (MoveToOutbox(fs::path(source), false)) WriteFile(source, content);
  }
  EXPECT_EQ(ContentOf(source), content);
  EXPECT_TRUE(MoveToOutbox(fs::path(source), false));
  EXPECT_FALSE(fs::exists(source));
  EXPECT_THAT(FilesBelow(Outbox()), ElementsAre("./" + source.filename().string()));
  EXPECT_EQ(ContentOf(Outbox() / source.filename()), content);
}

TEST_F(FilePipelineTest, ReadsNoArchiveThatIsDamaged) {
  WriteFile(source_, std::string(5000, 'a') + "end");
  ASSERT_TRUE(CompressFile(source_, target_));
  std::string archive = ContentOf(target_);
  for (std::size_t length = 0; length < archive.size(); ++length) {
    WriteFile(target_, archive.substr(0, length));
    EXPECT_THROW(ReadArchive(target_), std::runtime_error) << length;
  }
  // Behind the local header, 30 bytes and the name, stands the deflated content.
  archive[30 + 6 + 2] = static_cast<char>(archive[30 + 6 + 2] ^ 0x10);
  WriteFile(target_, archive);
  EXPECT_THROW(ReadArchive(target_), std::runtime_error);
}

TEST(Paths, MakeFoldersThatOnlyTheirOwnerCanEnter) {
  const TemporaryFolder folder;
  const auto former = ::umask(0);
  Paths::SetDataFolder((folder / "state" / "agent").string() + "/");
  const std::pair<Paths::Type, const char*> cases[] = {
      {Paths::DATA, "state/agent"},
      {Paths::WORK, "state/agent/work"},
      {Paths::PREVIOUS_INVENTORY, "state/agent/previous"},
      {Paths::OUTBOX, "state/agent/outbox"}};
  for (const auto& [type, name] : cases) {
    EXPECT_EQ(Paths(type, false).AppData(), folder / name);
    EXPECT_EQ(ModeOf(folder / name), 0u) << name;
    for (int time = 0; time < 2; ++time) EXPECT_EQ(Paths(type, true).AppData(), folder / name);
    EXPECT_EQ(ModeOf(folder / name), 0700u) << name;
  }
  ::umask(former);
  WriteFile(folder / "file", "");
  Paths::SetDataFolder(folder / "file");
  EXPECT_THROW(Paths(Paths::WORK, true), fs::filesystem_error);
}

}  // namespace
