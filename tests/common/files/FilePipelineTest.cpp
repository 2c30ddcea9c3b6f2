#include "common/files/FilePipeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "common/files/FileSealer.h"
#include "common/files/Paths.h"
#include "support/Files.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::ContentOf;
using Norvik::Tests::FilesBelow;
using Norvik::Tests::LogCapture;
using Norvik::Tests::TemporaryFolder;
using Norvik::Tests::WriteFile;
using testing::ElementsAre;
using testing::IsEmpty;
namespace fs = boost::filesystem;

/// While it lives, a write beyond the size fails as it does on a full disk.
class FullDisk {
 public:
  explicit FullDisk(rlim_t size) : handler_(::signal(SIGXFSZ, SIG_IGN)) {
    ::getrlimit(RLIMIT_FSIZE, &former_);
    const rlimit limit{size, former_.rlim_max};
    ::setrlimit(RLIMIT_FSIZE, &limit);
  }
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    ::setrlimit(RLIMIT_FSIZE, &former_);
    ::signal(SIGXFSZ, handler_);
  }

 private:
  void (*handler_)(int);
  rlimit former_{};
};

/// Content that does not shrink when it is compressed.
std::string Noise(std::size_t size) {
  std::string noise;
  unsigned state = 1;
  while (noise.size() < size) {
    state = state * 1664525u + 1013904223u;
    noise += static_cast<char>(state >> 24);
  }
  return noise;
}

class FilePipelineTest : public testing::Test {
 protected:
  FilePipelineTest() { Paths::SetDataFolder(folder_ / "data"); }

  fs::path Outbox() const { return folder_ / "data" / "outbox"; }

  TemporaryFolder folder_;
  LogCapture log_;
};

using Step = std::function<bool(const fs::path&, const fs::path&)>;
const std::pair<const char*, Step> STEPS[] = {
    {"compress", CompressFile}, {"encrypt", AgentEncryptFile}, {"copy", CopyFileToDestination}};

TEST_F(FilePipelineTest, BringsADocumentThroughAllSteps) {
  const std::string document = Noise(200000) + std::string(200000, 'a');
  WriteFile(folder_ / "host.json", document);
  ASSERT_TRUE(CompressFile(folder_ / "host.json", folder_ / "host.zip"));
  EXPECT_LT(fs::file_size(folder_ / "host.zip"), 250000u);
  ASSERT_TRUE(AgentEncryptFile(folder_ / "host.zip", folder_ / "host.jsonkob"));
  ASSERT_TRUE(MoveToOutbox(folder_ / "host.jsonkob", false));
  EXPECT_FALSE(fs::exists(folder_ / "host.jsonkob"));
  EXPECT_THAT(FilesBelow(Outbox()), ElementsAre("./host.jsonkob"));

  FileSealer(folder_ / "data" / "keys").Open(Outbox() / "host.jsonkob", folder_ / "opened.zip");
  EXPECT_TRUE(ReadArchive(folder_ / "opened.zip") == document);
  EXPECT_EQ(log_.Texts(Logger::LEVEL_ERROR).size(), 0u);
}

TEST_F(FilePipelineTest, ReplacesAnEarlierTargetAndTheSourceItself) {
  for (const auto& [name, step] : STEPS) {
    WriteFile(folder_ / "source", "content");
    WriteFile(folder_ / "target", std::string(1000, 'o'));
    EXPECT_TRUE(step(folder_ / "source", folder_ / "target")) << name;
    const std::string separate = ContentOf(folder_ / "target");
    EXPECT_TRUE(step(folder_ / "source", folder_ / "source")) << name;
    EXPECT_EQ(ContentOf(folder_ / "source").size(), separate.size()) << name;
    EXPECT_EQ(ContentOf(folder_ / "target"), separate) << name;
  }
}

TEST_F(FilePipelineTest, LeavesTheTargetAloneWhenTheDiskIsFull) {
  WriteFile(folder_ / "source", Noise(300000));
  WriteFile(folder_ / "key", "");
  ASSERT_TRUE(AgentEncryptFile(folder_ / "key", folder_ / "key"));
  fs::create_directory(folder_ / "targets");
  WriteFile(folder_ / "targets" / "target", "earlier");
  for (const rlim_t size : {0, 100, 100000}) {
    for (const auto& [name, step] : STEPS) {
      const FullDisk full(size);
      EXPECT_FALSE(step(folder_ / "source", folder_ / "targets" / "target")) << name;
      EXPECT_FALSE(step(folder_ / "source", folder_ / "targets" / "new")) << name;
    }
  }
  EXPECT_EQ(ContentOf(folder_ / "targets" / "target"), "earlier");
  EXPECT_THAT(FilesBelow(folder_ / "targets"), ElementsAre("./target"));
  EXPECT_EQ(log_.Texts(Logger::LEVEL_ERROR).size(), 18u);
}

TEST_F(FilePipelineTest, AnswersForASourceOrTargetThatCannotBe) {
  WriteFile(folder_ / "source", "content");
  fs::create_directory(folder_ / "folder");
  for (const auto& [name, step] : STEPS) {
    EXPECT_FALSE(step(folder_ / "missing", folder_ / "target")) << name;
    EXPECT_FALSE(step(folder_ / "folder", folder_ / "target")) << name;
    EXPECT_FALSE(step(folder_ / "source", folder_ / "no" / "target")) << name;
    EXPECT_FALSE(step(folder_ / "source", folder_ / "folder")) << name;
    EXPECT_FALSE(fs::exists(folder_ / "target")) << name;
  }
  EXPECT_FALSE(MoveToOutbox(folder_ / "missing", boost::none));
  EXPECT_FALSE(MoveToOutbox(folder_ / "folder", boost::none));
  EXPECT_THAT(FilesBelow(Outbox()), IsEmpty());
}

TEST_F(FilePipelineTest, ReplacesAFileOfThatNameInTheOutbox) {
  for (const auto* content : {"first", "second"}) {
    WriteFile(folder_ / "host.jsonkob", content);
    EXPECT_TRUE(MoveToOutbox(folder_ / "host.jsonkob", true));
    EXPECT_EQ(ContentOf(Outbox() / "host.jsonkob"), content);
  }
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

TEST_F(FilePipelineTest, GoesThroughThePipelineThatIsPutInItsPlace) {
  struct Refusing : IFilePipeline {
    bool Compress(const fs::path&, const fs::path&) override { return Count(); }
    bool Encrypt(const fs::path&, const fs::path&) override { return Count(); }
    bool Copy(const fs::path&, const fs::path&) override { return Count(); }
    bool MoveToOutbox(const fs::path&, const boost::optional<bool>&) override { return Count(); }
    bool Count() { return ++calls < 0; }
    int calls = 0;
  };
  const auto refusing = std::make_shared<Refusing>();
  WriteFile(folder_ / "source", "content");
  SetFilePipeline(refusing);
  for (const auto& [name, step] : STEPS) {
    EXPECT_FALSE(step(folder_ / "source", folder_ / "target")) << name;
  }
  EXPECT_FALSE(MoveToOutbox(folder_ / "source", true));
  SetFilePipeline(nullptr);
  EXPECT_EQ(refusing->calls, 4);
  EXPECT_TRUE(CopyFileToDestination(folder_ / "source", folder_ / "target"));
}

TEST_F(FilePipelineTest, ReadsNoArchiveThatIsDamaged) {
  WriteFile(folder_ / "source", std::string(5000, 'a') + "end");
  ASSERT_TRUE(CompressFile(folder_ / "source", folder_ / "whole.zip"));
  const std::string archive = ContentOf(folder_ / "whole.zip");
  for (std::size_t length = 0; length < archive.size(); ++length) {
    WriteFile(folder_ / "cut.zip", archive.substr(0, length));
    EXPECT_THROW(ReadArchive(folder_ / "cut.zip"), std::runtime_error) << length;
  }
  // Behind the local header, 30 bytes and the name, stands the deflated content.
  std::string altered = archive;
  altered[30 + 6 + 2] = static_cast<char>(altered[30 + 6 + 2] ^ 0x10);
  WriteFile(folder_ / "altered.zip", altered);
  EXPECT_THROW(ReadArchive(folder_ / "altered.zip"), std::runtime_error);
}

TEST(Paths, MakeFoldersThatOnlyTheirOwnerCanEnter) {
  const TemporaryFolder folder;
  const auto former = ::umask(0);
  Paths::SetDataFolder((folder / "state" / "agent").string() + "/");
  const std::pair<Paths::Type, const char*> cases[] = {{Paths::DATA, ""},
                                                       {Paths::WORK, "work"},
                                                       {Paths::PREVIOUS_INVENTORY, "previous"},
                                                       {Paths::OUTBOX, "outbox"}};
  for (const auto& [type, name] : cases) {
    const fs::path path = Paths(type, false).AppData();
    EXPECT_EQ(path, *name ? folder / "state" / "agent" / name : folder / "state" / "agent");
    EXPECT_FALSE(fs::exists(path)) << name;
    EXPECT_EQ(Paths(type, true).AppData(), path);
    EXPECT_EQ(Paths(type, true).AppData(), path);
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u) << name;
  }
  ::umask(former);
  WriteFile(folder / "file", "");
  Paths::SetDataFolder(folder / "file");
  EXPECT_THROW(Paths(Paths::WORK, true), fs::filesystem_error);
}

}  // namespace
