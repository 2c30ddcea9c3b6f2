#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace Norvik::Cli {

/// All of `norvik-agent`: reads the command line, runs the command and returns its exit code (see
/// `ExitCode`). A `std::exception` does not leave it: the reason goes to `errors` on one line. Not
/// for two threads at once, since a process has one agent. `run` and `user` may end the process
/// instead of returning, if an action does not end in time.
/// @param arguments the program's name and the words after it
/// @param output gets the answer; a failed write makes the command fail
int RunAgentProgram(const std::vector<std::string>& arguments, std::ostream& output,
                    std::ostream& errors);

/// The same on the standard channels of the process, some of which may be closed.
int RunAgentProgram(const std::vector<std::string>& arguments);

}  // namespace Norvik::Cli
