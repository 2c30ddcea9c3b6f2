#pragma once

#include <string>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// The state of the file inventory in the agent database: {"state", "stateName", "begin",
/// "modified", "end", "files"}, where a time is {"seconds", "time"} or null. Null if no run was
/// recorded. Reads the database that this process has open, and throws what `DataBase` throws.
OrderedJson ReadFileInventoryState();

/// The same for people: one line with its newline.
std::string FileInventoryLine(const OrderedJson& state);

}  // namespace Norvik::Cli
