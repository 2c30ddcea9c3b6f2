#pragma once

#include <chrono>

#include "host/assembly/AgentHost.h"

namespace Norvik::Host {

/// How long a stop waits for the actions that run.
inline constexpr std::chrono::seconds STOP_LIMIT(30);

/// Lets no action of an agent start any more and waits for those that run. Periodic actions stay
/// due for the next start. If some still run when the time is over the log names them, and false is
/// answered: the process may then only end without destroying what they use.
bool StopActions(ActionSystem& actions, std::chrono::milliseconds limit = STOP_LIMIT);

}  // namespace Norvik::Host
