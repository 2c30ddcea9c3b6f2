#pragma once

#include <string>
#include <vector>

#include "common/configuration/KobConfigurationInfo.h"

namespace Norvik::Host {

/// Something in a valid configuration that will surprise.
struct ConfigurationWarning {
  std::string key;    ///< "excludedPaths"
  std::string value;  ///< the entry; empty if it is one that is missing
  std::string text;
};

/// What of a configuration of the file inventory can match nothing or works otherwise than it
/// looks. Looks at this machine's folders.
std::vector<ConfigurationWarning> WarningsOf(const Common::KobConfigurationInfo& configuration);

}  // namespace Norvik::Host
