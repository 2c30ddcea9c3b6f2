#pragma once

#include <string>

#include "common/files/ScanRules.h"

namespace Norvik::Cli {

/// Whether a scan of the disk as it is now would list a path, and why.
struct ScanExplanation {
  bool listed = false;
  std::string rule;    ///< identifier for programs: "excluded-folder"
  std::string reason;  ///< for people: a sentence without a full stop
};

/// Follows the path from the root as the scan does, and applies `rules` at each step. A path that
/// does not exist or cannot be read is not listed, without an error.
/// @param path absolute, without "." and ".."
ScanExplanation ExplainScan(const Common::ScanRules& rules, const std::string& path);

}  // namespace Norvik::Cli
