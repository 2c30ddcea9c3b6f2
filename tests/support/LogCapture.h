#pragma once

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/log/Logger.h"

namespace Norvik::Tests {

/// Replaces the process's logger for a scope and records what is logged. Thread-safe.
class LogCapture {
 public:
  struct Line {
    int level;
    std::string text;
  };

  LogCapture() : previous_(Common::Logger::GetInstance()), sink_(std::make_shared<Sink>()) {
    Common::Logger::SetInstance(sink_);
  }
  LogCapture(const LogCapture&) = delete;
  LogCapture& operator=(const LogCapture&) = delete;
  ~LogCapture() { Common::Logger::SetInstance(std::move(previous_)); }

  std::vector<Line> Lines() const {
    const std::lock_guard lock(sink_->mutex);
    return sink_->lines;
  }
  std::vector<std::string> Texts(int level) const {
    std::vector<std::string> texts;
    for (auto& line : Lines()) {
      if (line.level == level) texts.push_back(std::move(line.text));
    }
    return texts;
  }
  bool Holds(int level, const std::string& text) const {
    const auto texts = Texts(level);
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }

 private:
  struct Sink : Common::Logger {
    void Log(Level level, const std::string& text, const char* /*file*/, int /*line*/,
             const char* /*function*/) override {
      const std::lock_guard lock(mutex);
      lines.push_back({level, text});
    }
    mutable std::mutex mutex;
    std::vector<Line> lines;
  };

  std::shared_ptr<Common::Logger> previous_;
  std::shared_ptr<Sink> sink_;
};

}  // namespace Norvik::Tests
