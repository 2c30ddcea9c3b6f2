#pragma once

#include <cstddef>

namespace Norvik::Cli {

/// Characters in a line of the output: the variable COLUMNS, else those of the terminal; 0, without
/// a limit, if standard output is no terminal.
std::size_t TerminalWidth();

}  // namespace Norvik::Cli
