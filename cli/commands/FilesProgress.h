#pragma once

#include <chrono>
#include <condition_variable>
#include <iosfwd>
#include <memory>
#include <mutex>
#include <thread>

#include "common/progress/ProgressListener.h"

namespace Norvik::Cli {

/// Prints the progress of a file inventory: a line at the start, then at most one per second.
/// Prints from a thread of its own as well, so nothing else may write to the output until this
/// object is destroyed.
class FilesProgress {
 public:
  /// @param output must outlive this object
  explicit FilesProgress(std::ostream& output);
  FilesProgress(const FilesProgress&) = delete;
  FilesProgress& operator=(const FilesProgress&) = delete;
  ~FilesProgress();

  /// Sets the current phase. `RudStatusFinished`: no phase, so no lines. Safe on any thread.
  /// @param seen not null, except with `RudStatusFinished`
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
  std::thread thread_;  ///< last, since it uses all the others
};

}  // namespace Norvik::Cli
