#include "common/identification/HostInfoProvider.h"

#include "common/text/Text.h"
#include "platform/LocalAccounts.h"
#include "platform/MachinePath.h"

namespace Norvik::Common {

std::string HostInfoProvider::GetHostName() { return EncodeUtf8Characters(Platform::HostName()); }

std::string GetAgentVersion() { return AGENT_VERSION; }

bool VerifyAgent::Verify() {
  return Platform::MachineHas("/opt/local/norvik/UninstallZebAgent.sh");
}

}  // namespace Norvik::Common
