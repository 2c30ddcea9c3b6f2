#include "common/action/ModuleAction.h"

namespace Norvik::Common {

ModuleAction::~ModuleAction() = default;

}  // namespace Norvik::Common
