#include "host/assembly/ListeningLogger.h"

#include <utility>

#include "host/ForeignComplaints.h"

namespace Norvik::Host {

using Common::Logger;

ListeningLogger::ListeningLogger(std::shared_ptr<Logger> log, LogListener listener)
    : log_(std::move(log)), listener_(std::move(listener)) {}

void ListeningLogger::Log(Level level, const std::string& text, const char* file, int line,
                          const char* function) {
  if (level < LEVEL_DETAIL && IsForeignComplaint(text)) level = LEVEL_DETAIL;
  if (log_) log_->Log(level, text, file, line, function);
  if (listener_) listener_({level, text});
}

LoggerScope::LoggerScope(std::shared_ptr<Logger> logger) : previous_(Logger::GetInstance()) {
  Logger::SetInstance(std::move(logger));
}

LoggerScope::~LoggerScope() { Logger::SetInstance(std::move(previous_)); }

}  // namespace Norvik::Host
