#pragma once

#include <string>

#include "host/assembly/AgentHost.h"

namespace Norvik::Host {

/// Hands a configuration to the module of a running agent. What it says of the server and of the
/// survey holds from the next start on, and the log says so if it has changed.
void ApplyConfiguration(AgentHost& host, const Common::AgentConfigurationInfo& configuration);

/// The same for the text of one, which is stored in the data folder first. Raises `UsageError` for
/// a wrong one, and another subclass of `std::exception` if it cannot be stored.
void StoreConfiguration(AgentHost& host, const std::string& text);

}  // namespace Norvik::Host
