#pragma once

#include <boost/filesystem/path.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "cli/commands/FilesCounts.h"
#include "cli/commands/FilesWatch.h"
#include "cli/commands/WatchedPipeline.h"
#include "common/action/TaskResponseInfo.h"

namespace Norvik::Cli {

/// What a run of the file inventory gave.
struct FilesReport {
  bool requestedIncremental = false;
  double seconds = 0;
  std::string kind;            ///< "incremental" or "total", as it ran; empty if it was refused
  std::string fallbackReason;  ///< why a total one took the place of an incremental one
  bool nothingToSend = false;
  FilesCounts counts;
  std::uint64_t folders = 0;  ///< that were opened
  std::map<FilesPhase, double> phases;
  std::vector<PipelineStep> steps;
  std::vector<Common::TaskResponseInfo> statuses;
  std::vector<std::string> problems;

  /// The file in the outbox; empty if none came.
  boost::filesystem::path File() const;
  std::uintmax_t Bytes() const;
  /// Whether the run was carried out without a fault and its document, if there was anything to
  /// tell, is in the outbox.
  bool Succeeded() const;

  std::string ToText() const;
  /// On one line, with a line end.
  std::string ToJsonText() const;
};

}  // namespace Norvik::Cli
