#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "cli/commands/RunResult.h"
#include "common/files/FilesCounts.h"
#include "common/inventory/RudStatus.h"

namespace Norvik::Cli {

/// The result of a file inventory, and its rendering.
struct FilesReport : RunResult {
  Common::FilesCounts counts;
  std::uint64_t folders = 0;                   ///< number of folders opened
  std::map<Common::RudStatus, double> phases;  ///< seconds

  /// Whether the run ended without a problem, with its document in the outbox or with nothing to
  /// report.
  bool Succeeded() const;

  std::string ToText() const;
  /// One line with its newline.
  std::string ToJsonText() const;
};

}  // namespace Norvik::Cli
