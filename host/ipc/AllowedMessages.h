#pragma once

#include "common/ipc/ICommunicationIPC.h"

namespace Norvik::Host {

/// Who gets a message.
enum class Receiver { SERVICE, USER };

/// Whether a message may come to a receiver of this kind, by its code and the name of its
/// parameter. Nothing else is run for the other side: a user must not have the service do what
/// only the server may ask for.
bool IsAllowed(Receiver receiver, const Common::IPCMessage& message);

/// "1013 \"name\"", for logs: on one line and of bounded length, whatever the sender wrote.
std::string Describe(const Common::IPCMessage& message);

}  // namespace Norvik::Host
