#include "common/identification/HostInfoProvider.h"

#include <unistd.h>

#include "common/text/Text.h"
#include "platform/MachinePath.h"

namespace Norvik::Common {

std::string HostInfoProvider::GetHostName() {
  // The system's limit is 255 bytes or less; a name of that length comes without a NUL.
  char name[257] = {};
  if (::gethostname(name, sizeof(name) - 1) != 0) return {};
  return EncodeUtf8Characters(name);
}

std::string GetAgentVersion() { return "9.24.2.0"; }

bool VerifyAgent::Verify() {
  return Platform::MachineHas("/opt/local/norvik/UninstallZebAgent.sh");
}

}  // namespace Norvik::Common
