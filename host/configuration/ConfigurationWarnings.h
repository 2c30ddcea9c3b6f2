#pragma once

#include <string>
#include <vector>

#include "common/configuration/AgentConfigurationInfo.h"

namespace Norvik::Host {

/// Something in a valid configuration that will surprise.
struct ConfigurationWarning {
  std::string key;    ///< "excludedPaths"
  std::string value;  ///< the entry; empty if it is one that is missing
  std::string text;
};

/// What of a configuration of the file inventory can match nothing or works otherwise than it
/// looks, and what of the server's cannot work. Looks at this machine's folders. The configuration
/// must have this product's record.
std::vector<ConfigurationWarning> WarningsOf(const Common::AgentConfigurationInfo& configuration);

}  // namespace Norvik::Host
