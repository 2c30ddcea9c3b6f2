#pragma once

#include <iosfwd>

#include "forge/ForgeOptions.h"

namespace Norvik::Forge {

/// Runs simulated agents against a server and prints what they have seen of it. Returns whether
/// everything that was to be sent has arrived.
bool RunAgents(const AgentsOptions& options, std::ostream& output);

}  // namespace Norvik::Forge
