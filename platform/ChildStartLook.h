#pragma once

#include <string>

#include "platform/ChildProcess.h"

namespace Norvik::Platform {

/// Number of the error that the start of a program would end with; 0 if a look finds nothing
/// against it.
int StartProblem(const ChildCommand& command);

/// A line that a shell takes for just these words; of one that only asks through a shell, the line
/// that the shell gets.
std::string ShellText(const ChildCommand& command);

}  // namespace Norvik::Platform
