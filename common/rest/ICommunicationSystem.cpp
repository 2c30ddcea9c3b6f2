#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

ICommunicationSystem::~ICommunicationSystem() = default;

}  // namespace Norvik::Common
