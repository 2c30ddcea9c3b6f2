#pragma once

#include "common/action/ActionParameters.h"
#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

enum class Receiver { SERVICE, USER };

/// Whether the receiver accepts a message with this code and parameter name. Nothing else is run
/// for the other side: a user must not make the service do what only the server may request.
bool IsAllowed(Receiver receiver, const Common::IPCMessage& message);

/// The parameters of the action that a message starts: its key with its value, as a `wxString`.
Common::ActionParameters ParametersOf(const Common::IPCMessage& message);

/// "1013 \"name\"", for logs: one line of limited length, whatever the sender wrote.
std::string Describe(const Common::IPCMessage& message);

}  // namespace Norvik::Host
