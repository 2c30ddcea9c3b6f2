#pragma once

#include <string>

#include "common/Api.h"

namespace Norvik::Common {

/// The agent's version, as in "9.24.2.0".
NORVIK_COMMON_API std::string GetAgentVersion();

}  // namespace Norvik::Common
