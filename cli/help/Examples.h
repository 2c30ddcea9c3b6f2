#pragma once

#include <CLI/CLI.hpp>

namespace Norvik::Cli {

/// Ends the help of each command with examples of its own, in place of the program's footer.
void AddExamples(CLI::App& program);

}  // namespace Norvik::Cli
