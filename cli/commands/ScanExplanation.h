#pragma once

#include <string>

#include "common/files/ScanRules.h"

namespace Norvik::Cli {

/// Whether a scan of the disk as it is now would list a path, and why.
struct ScanExplanation {
  bool listed = false;
  std::string rule;    ///< a word for programs: "excluded-folder"
  std::string reason;  ///< a sentence for people, without the path and without a full stop
};

/// Follows the path from the root as the scan does, and decides at each step by `rules`.
/// @param path absolute, without "." and ".." in it
ScanExplanation ExplainScan(const Common::ScanRules& rules, const std::string& path);

}  // namespace Norvik::Cli
