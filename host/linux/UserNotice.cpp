#include "host/run/UserNotice.h"

namespace Norvik::Host {

// The desktops of this system have no common tool; the process prints the text in any case.
void ShowNotice(const std::string& /*text*/) {}

}  // namespace Norvik::Host
