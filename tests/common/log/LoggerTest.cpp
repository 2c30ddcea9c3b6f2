#include "common/log/Logger.h"

#include "common/log/FileLogger.h"
#include "common/log/LineLimit.h"
#include "support/Test.h"

namespace {

using namespace Norvik::Common;
using namespace Norvik::Tests;

void Leave(bool byException) {
  NORVIK_SCOPE();
  if (byException) throw std::runtime_error("");
}

TEST(Logger, TracesTheExitOfAScopeUnlessAnExceptionLeavesIt) {
  const LogCapture log;
  Leave(false);
  EXPECT_THROW(Leave(true), std::runtime_error);
  const auto leaveWhileCleaningUp = [] {
    const Scope cleanUp([] { Leave(false); });
    throw std::runtime_error("");
  };
  EXPECT_THROW(leaveWhileCleaningUp(), std::runtime_error);
  EXPECT_THAT(log.Texts(Logger::LEVEL_TRACE), ElementsAre(">>", "<<", ">>", ">>", "<<"));
}

TEST(Logger, WritesNumbersAlikeUnderEveryLocale) {
  const tests::CommaLocale locale;
  const LogCapture log;
  NORVIK_INFORMATION(1234567);
  EXPECT_THAT(log.Texts(Logger::LEVEL_INFORMATION), ElementsAre("1234567"));
}

TEST(Logger, FallsBackToTheErrorChannelWithoutAnInstance) {
  const LogCapture restores;
  Logger::SetInstance(nullptr);
  testing::internal::CaptureStderr();
  NORVIK_ERROR("nobody listens");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "nobody listens\n");
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
  EXPECT_THAT(Logger::GetInstance(), NotNull());
}

TEST(FileLogger, LeavesOutWhatExceedsTheLimitOfAScope) {
  const TemporaryFolder folder;
  const auto logger = MakeFileLogger(folder / "agent.log", Logger::LEVEL_DETAIL);
  const auto log = [&](Logger::Level level, int count) {
    for (int i = 0; i < count; ++i) logger->Log(level, "x", "File.cpp", 12, "Run");
  };
  const auto limit = std::make_shared<LineLimit>(2, 3);
  {
    const LineLimitScope scope(limit);
    log(Logger::LEVEL_ERROR, 10);
    log(Logger::LEVEL_DETAIL, 10);
    log(Logger::LEVEL_TRACE, 10);  // not written anyway
    const LineLimitScope without(nullptr);
    log(Logger::LEVEL_ERROR, 1);
  }
  log(Logger::LEVEL_ERROR, 1);
  const std::string text = ContentOf(folder / "agent.log");
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 2 + 3 + 1 + 1);
  const auto now = std::chrono::steady_clock::now();
  EXPECT_EQ(limit->TakeLeftOut(now), 0u);
  EXPECT_FALSE(limit->IsUnused(now + std::chrono::minutes(2)));
  EXPECT_EQ(limit->TakeLeftOut(now + std::chrono::minutes(2)), 8u + 7u);
  EXPECT_TRUE(limit->IsUnused(now + std::chrono::minutes(2)));
  EXPECT_TRUE(limit->Allows(Logger::LEVEL_ERROR, now + std::chrono::minutes(2)));
}

TEST(FileLogger, WritesOneLinePerTextUpToItsLevel) {
  const TemporaryFolder folder;
  const auto path = folder / "log" / "agent.log";
  const auto logger = MakeFileLogger(path, Logger::LEVEL_INFORMATION);
  logger->Log(Logger::LEVEL_ERROR, "broken\nforged", "File.cpp", 12, "Run");
  logger->Log(Logger::LEVEL_INFORMATION, "{} %s", "File.cpp", 13, "Run");
  logger->Log(Logger::LEVEL_DETAIL, "too much", "File.cpp", 14, "Run");
  EXPECT_THAT(ContentOf(path), MatchesRegex("[^\n]+\\[2\\] File.cpp:12 Run: broken\\\\nforged\n"
                                            "[^\n]+\\[4\\] File.cpp:13 Run: \\{\\} %s\n"));
  EXPECT_EQ(ModeOf(path), 0600u);
  EXPECT_THROW(MakeFileLogger(path / "agent.log", 4), std::runtime_error);
}

TEST(FileLogger, KeepsThreeOldFilesOfFiveMebibytes) {
  const TemporaryFolder folder;
  const auto logger = MakeFileLogger(folder / "agent.log", Logger::LEVEL_TRACE);
  const std::string block(1 << 20, 'x');
  for (int i = 0; i < 26; ++i) logger->Log(Logger::LEVEL_DETAIL, block, "f", 1, "g");
  const auto files = FilesBelow(folder.Path());
  EXPECT_THAT(files, ElementsAre("./agent.1.log", "./agent.2.log", "./agent.3.log", "./agent.log"));
  for (const auto& file : files) EXPECT_LE(fs::file_size(folder / file), 5u << 20);
}

}  // namespace
