#pragma once

#include <chrono>
#include <condition_variable>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <thread>

#include "common/progress/ProgressListener.h"

namespace Norvik::Cli {

/// Writes how far a file inventory is, a line at the start and at most one a second, until it is
/// destroyed. Nothing else may write to the output until then.
class FilesProgress {
 public:
  explicit FilesProgress(std::ostream& output);
  FilesProgress(const FilesProgress&) = delete;
  FilesProgress& operator=(const FilesProgress&) = delete;
  ~FilesProgress();

  /// From any thread. `RudStatusFinished`: no phase, and so no lines.
  void Enter(Common::RudStatus phase, std::shared_ptr<const Common::SeenCounts> seen);

 private:
  void Work();
  void WriteLineIfDue();

  std::ostream& output_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopped_ = false;
  Common::RudStatus phase_ = Common::RudStatusFinished;
  std::shared_ptr<const Common::SeenCounts> seen_;  ///< not null during a phase
  std::chrono::steady_clock::time_point lastLine_;
  std::chrono::steady_clock::time_point scanSince_;
  std::thread thread_;  ///< last, as it works with all the others
};

}  // namespace Norvik::Cli
