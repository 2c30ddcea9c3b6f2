#pragma once

#include "common/action/ActionCodes.h"

namespace Norvik::KOB {

/// Action codes of this product.
enum ActionCodes : unsigned int { NORVIK_KOB_ACTION_CODES(NORVIK_ACTION_ENUMERATOR) };

}  // namespace Norvik::KOB
