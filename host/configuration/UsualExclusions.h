#pragma once

#include <vector>

namespace Norvik::Host {

/// A folder that a scan of the disk had better leave out on this system.
struct UsualExclusion {
  const char* folder;
  const char* reason;  ///< what a scan would do there, as in "would list its files twice"
};

/// Those of this system, whether they exist on this machine or not. The default configuration
/// leaves them out.
const std::vector<UsualExclusion>& UsualExclusions();

}  // namespace Norvik::Host
