#pragma once

#include <mutex>
#include <vector>

#include "common/progress/ProgressListener.h"

namespace Norvik::Cli {

/// Records the statuses that tasks report, in order. Safe on any thread.
class StatusRecorder : public Common::IProgressListener {
 public:
  void TaskReported(const Common::TaskResponseInfo& status) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    statuses_.push_back(status);
  }

  std::vector<Common::TaskResponseInfo> Statuses() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return statuses_;
  }

 protected:
  mutable std::mutex mutex_;  ///< guards the members of derived classes as well

 private:
  std::vector<Common::TaskResponseInfo> statuses_;
};

}  // namespace Norvik::Cli
