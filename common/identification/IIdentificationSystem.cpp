#include "common/identification/IIdentificationSystem.h"

namespace Norvik::Common {

IIdentificationSystem::~IIdentificationSystem() = default;

}  // namespace Norvik::Common
