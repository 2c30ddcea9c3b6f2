#pragma once

#include <string>

namespace Norvik::KOB {

/// A line for the shell: the format with the name in it, not escaped. Logs a warning if the name
/// holds characters that mean something to the shell.
std::string ShellLine(const char* format, const std::string& name);

}  // namespace Norvik::KOB
