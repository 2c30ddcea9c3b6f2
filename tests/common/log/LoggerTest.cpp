#include "common/log/Logger.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <boost/format.hpp>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include "common/log/FileLogger.h"
#include "support/CommaLocale.h"
#include "support/LogCapture.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace Norvik::Common;
using Norvik::Tests::LogCapture;
using Norvik::Tests::TemporaryFolder;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

std::vector<std::string> LinesOf(const boost::filesystem::path& path) {
  std::ifstream file(path.string());
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line);) lines.push_back(line);
  return lines;
}

void Leave(bool byException) {
  NORVIK_SCOPE();
  if (byException) throw std::runtime_error("");
}

TEST(Logger, TracesTheExitOnlyWithoutAnException) {
  const LogCapture log;
  Leave(false);
  EXPECT_THROW(Leave(true), std::runtime_error);
  EXPECT_THAT(log.Texts(Logger::LEVEL_TRACE), ElementsAre(">>", "<<", ">>"));
}

TEST(Logger, TracesTheExitOfAScopeThatCleansUpAfterAnException) {
  struct CleanUp {
    ~CleanUp() { Leave(false); }
  };
  const LogCapture log;
  EXPECT_THROW(
      {
        const CleanUp cleanUp;
        throw std::runtime_error("");
      },
      std::runtime_error);
  EXPECT_THAT(log.Texts(Logger::LEVEL_TRACE), ElementsAre(">>", "<<"));
}

TEST(Logger, WritesNumbersAlikeUnderEveryLocale) {
  const tests::CommaLocale locale;
  const LogCapture log;
  NORVIK_INFORMATION(1234567);
  EXPECT_THAT(log.Texts(Logger::LEVEL_INFORMATION), ElementsAre("1234567"));
}

TEST(Logger, FallsBackToTheErrorChannelWithoutAnInstance) {
  const auto former = Logger::GetInstance();
  Logger::SetInstance(nullptr);
  testing::internal::CaptureStderr();
  NORVIK_ERROR("nobody listens");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "nobody listens\n");
  Logger::SetInstance(former);
}

TEST(Logger, MayBeReplacedWhileThreadsLog) {
  const LogCapture outer;
  std::vector<std::thread> threads;
  for (int i = 0; i < 2; ++i) {
    threads.emplace_back([] {
      for (int line = 0; line < 1000; ++line) NORVIK_DETAIL("line");
    });
  }
  for (int i = 0; i < 100; ++i) const LogCapture inner;
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(Logger::GetInstance(), testing::NotNull());
}

TEST(FileLogger, WritesOneLinePerTextUpToItsLevel) {
  const TemporaryFolder folder;
  const auto path = folder / "log" / "agent.log";
  const auto logger = MakeFileLogger(path, Logger::LEVEL_INFORMATION);
  logger->Log(Logger::LEVEL_ERROR, "broken\nforged", "File.cpp", 12, "Run");
  logger->Log(Logger::LEVEL_INFORMATION, "{} %s", "File.cpp", 13, "Run");
  logger->Log(Logger::LEVEL_DETAIL, "too much", "File.cpp", 14, "Run");
  EXPECT_THAT(LinesOf(path), ElementsAre(EndsWith("[2] File.cpp:12 Run: broken\\nforged"),
                                         EndsWith("[4] File.cpp:13 Run: {} %s")));
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(FileLogger, KeepsThreeOldFilesOfFiveMebibytes) {
  const TemporaryFolder folder;
  const auto logger = MakeFileLogger(folder / "agent.log", Logger::LEVEL_TRACE);
  const std::string block(1 << 20, 'x');
  for (int i = 0; i < 26; ++i) logger->Log(Logger::LEVEL_DETAIL, block, "f", 1, "g");
  std::vector<std::string> names;
  for (const auto& entry : boost::filesystem::directory_iterator(folder.Path())) {
    names.push_back(entry.path().filename().string());
    EXPECT_LE(boost::filesystem::file_size(entry.path()), 5u << 20);
  }
  EXPECT_THAT(names, testing::UnorderedElementsAre("agent.log", "agent.1.log", "agent.2.log",
                                                   "agent.3.log"));
}

TEST(FileLogger, RaisesWhereNoFileCanBe) {
  const TemporaryFolder folder;
  std::ofstream((folder / "file").string()) << "text";
  EXPECT_THROW(MakeFileLogger(folder / "file" / "agent.log", 4), std::runtime_error);
}

}  // namespace
