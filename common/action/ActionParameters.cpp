#include "common/action/ActionParameters.h"

namespace Norvik::Common {

ActionParameters::~ActionParameters() = default;

}  // namespace Norvik::Common
