#include "common/log/Logger.h"

#include <cstdio>
#include <exception>
#include <mutex>
#include <utility>

namespace Norvik::Common {

namespace {

struct Instance {
  std::mutex mutex;
  std::shared_ptr<Logger> logger;
};

Instance& TheInstance() {
  static Instance instance;
  return instance;
}

}  // namespace

Logger::~Logger() = default;

std::shared_ptr<Logger> Logger::GetInstance() {
  Instance& instance = TheInstance();
  const std::lock_guard<std::mutex> lock(instance.mutex);
  return instance.logger;
}

void Logger::SetInstance(std::shared_ptr<Logger> logger) {
  Instance& instance = TheInstance();
  {
    const std::lock_guard<std::mutex> lock(instance.mutex);
    std::swap(instance.logger, logger);
  }
  // The former logger is destroyed here, outside the lock, since its destructor may log.
}

void Logger::Trace(const std::string& text) {
  const std::string line = text + "\n";
  std::fwrite(line.data(), 1, line.size(), stderr);
}

LogScope::LogScope(const char* file, int line, const char* function)
    : file_(file), line_(line), function_(function), exceptions_(std::uncaught_exceptions()) {
  Logger::Write(Logger::LEVEL_TRACE, ">>", file_, line_, function_);
}

LogScope::~LogScope() {
  if (std::uncaught_exceptions() > exceptions_) return;
  try {
    Logger::Write(Logger::LEVEL_TRACE, "<<", file_, line_, function_);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "Cannot log: %s\n", error.what());
  }
}

}  // namespace Norvik::Common
