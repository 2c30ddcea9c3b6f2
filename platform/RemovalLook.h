#pragma once

#include <set>
#include <string>

namespace Norvik::Platform {

/// The entry that a path names, whichever way the path leads there: its folder without links or
/// dots, and its name.
std::string PlaceOf(const std::string& path);

/// Number of the error that the removal of a file or an empty folder would end with; 0 if a look
/// finds nothing against it.
/// @param removed places that are counted as removed
int RemovalProblem(const std::string& path, const std::set<std::string>& removed);

}  // namespace Norvik::Platform
