#pragma once

#include <vector>

namespace Norvik::Host {

/// A folder that a file inventory should not scan on this system.
struct UsualExclusion {
  const char* folder;
  const char* reason;  ///< "a scan would list its files twice"
};

/// The exclusions of this system, whether the folders exist on this machine or not. The default
/// configuration contains them.
const std::vector<UsualExclusion>& UsualExclusions();

}  // namespace Norvik::Host
