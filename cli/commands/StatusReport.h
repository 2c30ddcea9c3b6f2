#pragma once

#include "cli/commands/CommandLine.h"
#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

/// What `status` shows, in JSON. Creates and changes nothing; throws a subclass of
/// `std::exception`, as for a damaged database.
OrderedJson StatusOf(const CommandLine& line);

}  // namespace Norvik::Cli
