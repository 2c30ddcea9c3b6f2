#include "host/run/UserNotice.h"

namespace Norvik::Host {

// No tool is common to the desktops of this system: what the process prints has to do.
void ShowNotice(const std::string& /*text*/) {}

}  // namespace Norvik::Host
