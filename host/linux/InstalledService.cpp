#include "host/health/InstalledService.h"

namespace Norvik::Host {

InstalledService MachineService() {
  return {{"/etc/systemd/system/norvik-agent.service", "/lib/systemd/system/norvik-agent.service"},
          {"/bin/systemctl", "is-active", "--quiet", "norvik-agent.service"},
          {3, 4}};
}

InstalledService UserService() {
  return {{"/etc/systemd/user/norvik-agent-user.service",
           "/usr/lib/systemd/user/norvik-agent-user.service"},
          {},
          {}};
}

}  // namespace Norvik::Host
