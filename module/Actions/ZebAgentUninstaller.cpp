#include "module/Actions/ZebAgentUninstaller.h"

#include <boost/format.hpp>
#include <exception>

#include "common/commands/CommandRunner.h"
#include "common/identification/HostInfoProvider.h"
#include "common/log/Logger.h"

namespace Norvik::KOB {

void ZebAgentUninstaller::UninstallZebAgent() {
  NORVIK_SCOPE();
  try {
    if (!Common::VerifyAgent::Verify()) {
      NORVIK_INFORMATION("The ZEB agent is not installed");
      return;
    }
    NORVIK_INFORMATION("Starting ZEB agent uninstall");
    Common::CommandRunner::ExecChange("sh /opt/local/norvik/UninstallZebAgent.sh &");
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Failed to uninstall ZEB agent: %1%") % error.what());
  }
}

}  // namespace Norvik::KOB
