#pragma once

#include <string>
#include <vector>

namespace Norvik::Platform {

/// Runs a program that only queries the machine, without a shell, waits for it, and returns its
/// standard output whole and unchanged; its standard error is lost. Empty if it cannot be started.
/// An absolute path goes through `MachinePath`.
std::string RunTask(const std::string& program, const std::vector<std::string>& arguments);

}  // namespace Norvik::Platform
