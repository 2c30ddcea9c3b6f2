#include "receiver/commands/ServerLog.h"

#include <ctime>
#include <iostream>
#include <memory>
#include <mutex>

#include "common/log/Logger.h"

namespace Norvik::Receiver {

namespace {

class ServerLog : public Common::Logger {
 public:
  void Log(Level level, const std::string& text, const char*, int, const char*) override {
    if (level > LEVEL_INFORMATION) return;
    char time[32] = "";
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    std::strftime(time, sizeof(time), "%Y-%m-%dT%H:%M:%SZ", ::gmtime_r(&now, &parts));
    // A text may hold what an agent has sent: it must not look like several lines.
    std::string line = std::string(time) + " [" + std::to_string(level) + "] ";
    for (const char c : text) line += static_cast<unsigned char>(c) < ' ' ? '?' : c;
    const std::lock_guard<std::mutex> lock(mutex_);
    std::cerr << line << std::endl;
  }

 private:
  std::mutex mutex_;
};

}  // namespace

void LogToStandardError() { Common::Logger::SetInstance(std::make_shared<ServerLog>()); }

}  // namespace Norvik::Receiver
