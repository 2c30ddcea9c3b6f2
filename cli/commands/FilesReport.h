#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "cli/commands/FilesCounts.h"
#include "cli/commands/RunResult.h"
#include "common/inventory/RudStatus.h"

namespace Norvik::Cli {

/// What a run of the file inventory gave.
struct FilesReport : RunResult {
  FilesCounts counts;
  std::uint64_t folders = 0;  ///< that were opened
  std::map<Common::RudStatus, double> phases;

  /// Whether the run ended without a fault and its document, if there was anything to report, is in
  /// the outbox.
  bool Succeeded() const;

  std::string ToText() const;
  /// On one line, with a newline at its end.
  std::string ToJsonText() const;
};

}  // namespace Norvik::Cli
