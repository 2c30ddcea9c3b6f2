#pragma once

#include <functional>

#include "common/Api.h"

namespace Norvik::Common {

/// Runs a step that deletes rows of the agent database, then gives the space that it has freed, if
/// that is more than a MiB, back to the file system; other free space stays for later rows. Throws
/// what the step throws. That space cannot be given back is logged.
NORVIK_COMMON_API void GiveBackFreedSpace(const std::function<void()>& step);

}  // namespace Norvik::Common
