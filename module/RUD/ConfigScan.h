#pragma once

#include <map>
#include <set>
#include <string>

namespace Norvik::KOB::V2 {

/// What a set of the scan configuration holds.
enum ConfigScan : int {
  ExcludePath = 0,       ///< full folder paths to leave out, spelled as the walk spells them
  IncludePath = 1,       ///< root folders to walk
  ExcludeFile = 2,       ///< file names, with extension, to leave out
  IncludeExtension = 3,  ///< extensions to keep, with their dot
};

using ScanConfiguration = std::map<ConfigScan, std::set<std::string>>;

}  // namespace Norvik::KOB::V2
