#pragma once

#include <string>

namespace Norvik::KOB {

/// A command line for the shell: the format with the name in place of "%1%", not escaped. Logs a
/// warning if the name holds characters that have a meaning for the shell.
std::string ShellLine(const char* format, const std::string& name);

}  // namespace Norvik::KOB
