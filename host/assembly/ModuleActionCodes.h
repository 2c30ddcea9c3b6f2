#pragma once

#include "common/action/ActionCodes.h"

namespace Norvik::Host {

/// The codes of the module's actions: all that the host knows of the module's own actions.
enum ModuleActionCodes : unsigned int { NORVIK_KOB_ACTION_CODES(NORVIK_ACTION_ENUMERATOR) };

}  // namespace Norvik::Host
