#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Norvik::Cli {

/// The whole of `norvik-agent`: reads the command line, runs the command and answers its exit code.
/// A failure is told on one line of `errors`. Never raises. Not for two threads at once: a process
/// has one agent.
/// @param arguments the program's name and what follows it
int RunAgentProgram(const std::vector<std::string>& arguments, std::ostream& output,
                    std::ostream& errors);

/// The same on the standard channels of the process, of which some may be closed.
int RunAgentProgram(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
