#pragma once

#include "common/action/ActionParameters.h"
#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

/// The parameters of the action that a message has run: its key with its value, as a `wxString`.
Common::ActionParameters ParametersOf(const Common::IPCMessage& message);

}  // namespace Norvik::Host
