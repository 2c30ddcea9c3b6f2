#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Norvik::Forge {

/// Runs `norvik-forge` with its arguments, the first one being the program's name. Returns the exit
/// code: 0 after success, 1 after a failure, 2 for wrong use.
int RunForgeProgram(const std::vector<std::string>& arguments);
int RunForgeProgram(const std::vector<std::string>& arguments, std::ostream& output,
                    std::ostream& errors);

}  // namespace Norvik::Forge
