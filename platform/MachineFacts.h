#pragma once

#include <map>
#include <string>

namespace Norvik::Platform {

/// What this machine has that neither a tool nor a file shows: for each file of a recording, by its
/// name, the content that stands for it. A recorded machine in force has its own files. On a system
/// other than macOS without one there is nothing. Throws nothing.
std::map<std::string, std::string> MachineFacts();

}  // namespace Norvik::Platform
