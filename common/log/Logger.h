#pragma once

#include <memory>
#include <sstream>
#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// The agent's log. One instance per process, shared by host and module.
class NORVIK_COMMON_API Logger {
 public:
  enum Level : int {
    LEVEL_ERROR = 2,
    LEVEL_WARNING = 3,
    LEVEL_INFORMATION = 4,
    LEVEL_DETAIL = 5,
    LEVEL_TRACE = 7,  ///< function entry and exit
  };

  virtual ~Logger();

  /// Writes one line. Called from any thread; must not raise.
  virtual void Log(Level level, const std::string& text, const char* file, int line,
                   const char* function) = 0;

  /// Null while the process has none.
  static std::shared_ptr<Logger> GetInstance();
  static void SetInstance(std::shared_ptr<Logger> logger);

  /// Where a text goes while there is no instance: the standard error channel.
  static void Trace(const std::string& text);

  /// Logs anything that can be streamed, under the classic locale.
  template <class T>
  static void Write(Level level, const T& message, const char* file, int line,
                    const char* function) {
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << message;
    if (const auto logger = GetInstance()) {
      logger->Log(level, stream.str(), file, line, function);
    } else {
      Trace(stream.str());
    }
  }

 protected:
  Logger() = default;
  Logger(const Logger&) = default;
  Logger& operator=(const Logger&) = default;
};

/// Logs ">>" now and "<<" at the end of the scope, unless an exception ends it.
class NORVIK_COMMON_API LogScope {
 public:
  LogScope(const char* file, int line, const char* function);
  LogScope(const LogScope&) = delete;
  LogScope& operator=(const LogScope&) = delete;
  ~LogScope();

 private:
  const char* file_;
  int line_;
  const char* function_;
  int exceptions_;
};

}  // namespace Norvik::Common

// Macros, because only they know where they stand.
#define NORVIK_LOG(level, message) \
  ::Norvik::Common::Logger::Write(level, message, __FILE_NAME__, __LINE__, __func__)
#define NORVIK_ERROR(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_ERROR, message)
#define NORVIK_WARNING(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_WARNING, message)
#define NORVIK_INFORMATION(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_INFORMATION, message)
#define NORVIK_DETAIL(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_DETAIL, message)
#define NORVIK_TRACE(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_TRACE, message)
#define NORVIK_SCOPE() const ::Norvik::Common::LogScope logScope_(__FILE_NAME__, __LINE__, __func__)
