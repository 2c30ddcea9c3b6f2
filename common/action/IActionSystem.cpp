#include "common/action/IActionSystem.h"

namespace Norvik::Common {

IActionSystem::~IActionSystem() = default;

}  // namespace Norvik::Common
