#pragma once

#include <functional>
#include <memory>
#include <string>

#include "common/log/Logger.h"

namespace Norvik::Host {

/// One line of the log.
struct LogLine {
  Common::Logger::Level level;
  const std::string& text;
};

/// Gets every line of every level, on the thread that logs it. Must not throw, nor log.
using LogListener = std::function<void(const LogLine&)>;

/// Passes each line to a log and to a listener.
class ListeningLogger : public Common::Logger {
 public:
  /// @param log      may be null: then only the listener gets the lines
  /// @param listener may be empty
  ListeningLogger(std::shared_ptr<Common::Logger> log, LogListener listener);

  void Log(Level level, const std::string& text, const char* file, int line,
           const char* function) override;

 private:
  const std::shared_ptr<Common::Logger> log_;
  const LogListener listener_;
};

/// Installs a logger for the process. The end of the scope restores the previous one.
class LoggerScope {
 public:
  explicit LoggerScope(std::shared_ptr<Common::Logger> logger);
  LoggerScope(const LoggerScope&) = delete;
  LoggerScope& operator=(const LoggerScope&) = delete;
  ~LoggerScope();

 private:
  std::shared_ptr<Common::Logger> previous_;
};

}  // namespace Norvik::Host
