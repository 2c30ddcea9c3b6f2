#include "platform/compat/LiveObjects.h"

#include "platform/compat/CfObjects.h"
#include "platform/compat/IoHandles.h"

namespace Norvik::Platform {

LiveObjects CountLiveObjects() { return {CountCfObjects(), CountIoHandles()}; }

}  // namespace Norvik::Platform
