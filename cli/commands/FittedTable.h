#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

using TableRow = std::vector<OrderedJson>;

/// The table of `TableText` with no line longer than `width`: long cells are cut and end with
/// "...". Where not even ten characters are left for each of more than two columns, every row but
/// the first, which holds the titles, becomes lines of title and value. 0 is no limit.
std::string FittedTable(const std::vector<TableRow>& rows, std::size_t width);

}  // namespace Norvik::Cli
