#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <condition_variable>
#include <iosfwd>
#include <mutex>
#include <thread>

#include "cli/commands/FilesWatch.h"
#include "platform/DirectoryReader.h"

namespace Norvik::Cli {

/// Writes how far a file inventory has come, a line at the start and at most one a second, while it
/// lives. Nobody else may write to the output until then.
class FilesProgress {
 public:
  explicit FilesProgress(std::ostream& output);
  FilesProgress(const FilesProgress&) = delete;
  FilesProgress& operator=(const FilesProgress&) = delete;
  ~FilesProgress();

  /// From any thread.
  void Enter(FilesPhase phase);

 private:
  void Work();
  void WriteLineIfDue();

  std::ostream& output_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool stopped_ = false;
  boost::optional<FilesPhase> phase_;
  std::chrono::steady_clock::time_point lastLine_;
  std::chrono::steady_clock::time_point scanSince_;
  Platform::ReadCounts before_;  ///< what was read before the scan
  std::thread thread_;           ///< last, as it works with all the others
};

}  // namespace Norvik::Cli
