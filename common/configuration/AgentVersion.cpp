#include "common/configuration/AgentVersion.h"

namespace Norvik::Common {

std::string GetAgentVersion() { return "9.24.2.0"; }

}  // namespace Norvik::Common
