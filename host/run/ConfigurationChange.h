#pragma once

#include <string>

#include "host/assembly/AgentHost.h"
#include "host/configuration/ConfigurationFile.h"

namespace Norvik::Host {

/// Passes a configuration to the module of a running agent, and sets the limits of its tools and of
/// the history.
/// Changes of the server and of the survey take effect at the next start; the log says so.
void ApplyConfiguration(AgentHost& host, const EffectiveConfiguration& effective);

/// Parses a configuration, stores its text in the data folder and applies it, with the managed
/// preferences over it. Throws `UsageError` if it is invalid, and another subclass of
/// `std::exception` if it cannot be stored or the managed preferences are invalid.
void StoreConfiguration(AgentHost& host, const std::string& text);

}  // namespace Norvik::Host
