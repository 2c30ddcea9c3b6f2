#pragma once

#include <string>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// How the file inventory stands, as the agent database tells it; null if no run was recorded.
/// Reads the database that this process has open, and changes nothing.
OrderedJson ReadFileInventoryState();

/// The same for people, on a line of its own.
std::string FileInventoryLine(const OrderedJson& state);

}  // namespace Norvik::Cli
