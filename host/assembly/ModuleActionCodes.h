#pragma once

#include "common/action/ActionCodes.h"

namespace Norvik::Host {

/// The module's actions by name. The host meets the module by these codes alone.
enum ModuleActionCodes : unsigned int { NORVIK_KOB_ACTION_CODES(NORVIK_ACTION_ENUMERATOR) };

}  // namespace Norvik::Host
