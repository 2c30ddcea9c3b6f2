#include "common/log/FileLogger.h"

#include <spdlog/logger.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <sys/stat.h>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "common/log/LineLimit.h"

namespace Norvik::Common {

namespace {

constexpr std::size_t MAX_FILE_SIZE = std::size_t{5} << 20;
constexpr std::size_t OLD_FILES = 3;

/// Without this, a text with line ends would look like several lines, which could be forged.
std::string WithEscapedLineEnds(const std::string& text) {
  std::string line;
  for (const char c : text) {
    if (c == '\n' || c == '\r') {
      line += c == '\n' ? "\\n" : "\\r";
    } else {
      line += c;
    }
  }
  return line;
}

class FileLogger : public Logger {
 public:
  FileLogger(spdlog::sink_ptr sink, int maxLevel)
      : logger_("agent", std::move(sink)), maxLevel_(maxLevel) {
    logger_.set_level(spdlog::level::trace);
    logger_.flush_on(spdlog::level::trace);
    logger_.set_pattern("%Y-%m-%dT%H:%M:%S.%e%z %P:%t %v");
  }

  void Log(Level level, const std::string& text, const char* file, int line,
           const char* function) override {
    if (level > maxLevel_ || !LineLimitScope::Allows(level)) return;
    logger_.log(spdlog::level::info, "[{}] {}:{} {}: {}", static_cast<int>(level), file, line,
                function, WithEscapedLineEnds(text));
  }

 private:
  spdlog::logger logger_;
  int maxLevel_;
};

}  // namespace

std::shared_ptr<Logger> MakeFileLogger(const boost::filesystem::path& file, int maxLevel) {
  spdlog::file_event_handlers handlers;
  handlers.after_open = [](const spdlog::filename_t&, std::FILE* stream) {
    ::fchmod(::fileno(stream), S_IRUSR | S_IWUSR);
  };
  try {
    auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(file.string(), MAX_FILE_SIZE,
                                                                       OLD_FILES, false, handlers);
    return std::make_shared<FileLogger>(std::move(sink), maxLevel);
  } catch (const spdlog::spdlog_ex& error) {
    throw std::runtime_error(error.what());
  }
}

}  // namespace Norvik::Common
