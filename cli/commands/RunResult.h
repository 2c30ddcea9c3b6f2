#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "common/action/TaskResponseInfo.h"
#include "common/progress/ProgressListener.h"

namespace Norvik::Cli {

/// The result of an inventory.
struct RunResult {
  bool requestedIncremental = false;
  double seconds = 0;          ///< of the action that runs it
  std::string kind;            ///< "incremental" or "total", as it ran; empty if nothing ran
  std::string fallbackReason;  ///< why it was total instead of incremental; or empty
  std::string refusal;         ///< why the request was refused; or empty
  bool nothingToSend = false;
  std::vector<Common::DocumentStep> steps;  ///< in order, without WRITE
  std::vector<Common::TaskResponseInfo> statuses;
  std::vector<std::string> problems;  ///< errors logged or found, in order

  /// The file that was moved to the outbox; empty if no file was.
  boost::filesystem::path File() const;
  /// The size of `File()` when it was moved; 0 if no file was.
  std::uintmax_t Bytes() const;
  /// True also without any step.
  bool AllStepsDone() const;
};

}  // namespace Norvik::Cli
