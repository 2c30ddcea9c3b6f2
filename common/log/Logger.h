#pragma once

#include <memory>
#include <sstream>
#include <string>
#include <type_traits>

#include "common/Api.h"

namespace Norvik::Common {

/// The log of the agent. One instance per process, shared by host and module. All functions may be
/// called from any thread. Log through the macros below, which add the place in the source.
class NORVIK_COMMON_API Logger {
 public:
  /// The lower the number, the more important the text.
  enum Level : int {
    LEVEL_ERROR = 2,
    LEVEL_WARNING = 3,
    LEVEL_INFORMATION = 4,
    LEVEL_DETAIL = 5,
    LEVEL_TRACE = 7,  ///< function entry and exit
  };

  virtual ~Logger();

  /// Writes one text. Called from any thread, several at once; must not throw.
  virtual void Log(Level level, const std::string& text, const char* file, int line,
                   const char* function) = 0;

  /// The logger of the process; null while none is set.
  static std::shared_ptr<Logger> GetInstance();
  /// Sets the logger of the process; null removes it. The former one is released.
  static void SetInstance(std::shared_ptr<Logger> logger);

  /// Writes a text to standard error, where texts go while no logger is set.
  static void Trace(const std::string& text);

  /// Logs any value that can be streamed, formatted with the classic locale.
  template <class T>
  static void Write(Level level, const T& message, const char* file, int line,
                    const char* function) {
    if constexpr (std::is_convertible_v<const T&, const std::string&>) {
      WriteText(level, message, file, line, function);
    } else {
      std::ostringstream stream;
      stream.imbue(std::locale::classic());
      stream << message;
      WriteText(level, stream.str(), file, line, function);
    }
  }

 protected:
  Logger() = default;
  Logger(const Logger&) = default;
  Logger& operator=(const Logger&) = default;

 private:
  static void WriteText(Level level, const std::string& text, const char* file, int line,
                        const char* function) {
    if (const auto logger = GetInstance()) {
      logger->Log(level, text, file, line, function);
    } else {
      Trace(text);
    }
  }
};

/// Logs ">>" now, and "<<" at the end of the scope unless an exception leaves it. The texts are
/// kept as pointers.
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

// Macros, since only a macro knows the place that it is used at. The message is anything that can
// be streamed, such as a `boost::format`; it is evaluated whatever the level.
#define NORVIK_LOG(level, message) \
  ::Norvik::Common::Logger::Write(level, message, __FILE_NAME__, __LINE__, __func__)
#define NORVIK_ERROR(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_ERROR, message)
#define NORVIK_WARNING(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_WARNING, message)
#define NORVIK_INFORMATION(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_INFORMATION, message)
#define NORVIK_DETAIL(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_DETAIL, message)
#define NORVIK_TRACE(message) NORVIK_LOG(::Norvik::Common::Logger::LEVEL_TRACE, message)
#define NORVIK_SCOPE() const ::Norvik::Common::LogScope logScope_(__FILE_NAME__, __LINE__, __func__)
