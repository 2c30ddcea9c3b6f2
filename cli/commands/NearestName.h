#pragma once

#include <string>
#include <vector>

namespace Norvik::Cli {

/// The name that a misspelt one most likely means: the one with the fewest letters added, left out,
/// replaced or swapped, regardless of case, the first of several. Empty if that is more than a
/// third of the letters.
std::string NearestName(const std::string& wrong, const std::vector<std::string>& names);

/// The text of an error, such as "unknown section volums; the nearest is volumes". If no name is
/// near: "unknown section x; known are setup, volumes".
/// @param kind of the name, such as "section"
std::string UnknownName(const std::string& kind, const std::string& wrong,
                        const std::vector<std::string>& names);

}  // namespace Norvik::Cli
