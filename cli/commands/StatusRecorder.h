#pragma once

#include <mutex>
#include <vector>

#include "host/assembly/Communications.h"

namespace Norvik::Cli {

/// Keeps the states that tasks report, in order, while it lives.
class StatusRecorder {
 public:
  explicit StatusRecorder(Host::Communications& communications) : communications_(communications) {
    communications_.SetStatusListener([this](const Common::TaskResponseInfo& status) {
      const std::lock_guard<std::mutex> lock(mutex_);
      statuses_.push_back(status);
    });
  }
  StatusRecorder(const StatusRecorder&) = delete;
  StatusRecorder& operator=(const StatusRecorder&) = delete;
  ~StatusRecorder() { communications_.SetStatusListener({}); }

  std::vector<Common::TaskResponseInfo> Statuses() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return statuses_;
  }

 private:
  Host::Communications& communications_;
  mutable std::mutex mutex_;
  std::vector<Common::TaskResponseInfo> statuses_;
};

}  // namespace Norvik::Cli
