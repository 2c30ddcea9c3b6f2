#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "common/action/TaskResponseInfo.h"
#include "common/progress/ProgressListener.h"

namespace Norvik::Cli {

/// What a run of an inventory gave.
struct RunResult {
  bool requestedIncremental = false;
  double seconds = 0;
  std::string kind;            ///< "incremental" or "total", as it ran; empty if nothing ran
  std::string fallbackReason;  ///< why a total one took the place of an incremental one; or empty
  std::string refusal;         ///< why the request was refused; or empty
  bool nothingToSend = false;
  std::vector<Common::DocumentStep> steps;  ///< without WRITE
  std::vector<Common::TaskResponseInfo> statuses;
  std::vector<std::string> problems;  ///< in the order in which they were logged or found

  /// The file in the outbox; empty if there is none.
  boost::filesystem::path File() const;
  std::uintmax_t Bytes() const;
  bool AllStepsDone() const;
};

}  // namespace Norvik::Cli
