#pragma once

#include <string>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// The state of the file inventory in the agent database; null if no run was recorded. Reads the
/// database that this process has open, and changes nothing.
OrderedJson ReadFileInventoryState();

/// The same for people, on a line of its own.
std::string FileInventoryLine(const OrderedJson& state);

}  // namespace Norvik::Cli
