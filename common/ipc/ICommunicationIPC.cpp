#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Common {

ICommunicationIPC::~ICommunicationIPC() = default;

}  // namespace Norvik::Common
