#pragma once

#include <iosfwd>

#include "cli/commands/CommandLine.h"

namespace Norvik::Cli {

/// Writes a support archive to `line.bundle` and lists what is in it. Asks the running agent, but
/// no server. Returns an exit code, and throws as a command does.
int WriteSupportBundle(const CommandLine& line, std::ostream& output);

}  // namespace Norvik::Cli
