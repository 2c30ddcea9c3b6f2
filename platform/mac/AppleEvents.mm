#include "platform/SystemChanges.h"

namespace Norvik::Platform {

/// Whether an event has a receiver shows only when it is sent.
int RealSystemChanges::AppleEventError() { return 0; }

}  // namespace Norvik::Platform
