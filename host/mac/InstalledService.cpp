#include "host/health/InstalledService.h"

namespace Norvik::Host {

InstalledService MachineService() {
  return {{"/Library/LaunchDaemons/com.norvik.agent.plist"},
          {"/bin/launchctl", "print", "system/com.norvik.agent"},
          {113}};
}

InstalledService UserService() {
  return {{"/Library/LaunchAgents/com.norvik.agent.user.plist"}, {}, {}};
}

}  // namespace Norvik::Host
