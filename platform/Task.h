#pragma once

#include <string>
#include <vector>

namespace Norvik::Platform {

/// Runs a program that only asks, without a shell, waits for it, and returns its standard output
/// whole and unchanged; nobody reads its error channel. Empty if it cannot be started. An absolute
/// path goes through `MachinePath`.
std::string RunTask(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace Norvik::Platform
