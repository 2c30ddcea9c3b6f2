#pragma once

#include <string>

namespace Norvik::Platform {

/// The path to use for an absolute path of the machine's own files. It is the path itself, unless a
/// recorded machine is in force: then it lies below that machine's root, and what the recording
/// does not hold does not exist. Relative paths stay as they are.
std::string MachinePath(const std::string& absolute);

/// Puts the files of a recorded machine in force; an empty text brings the real ones back. Call it
/// while no other thread asks for paths.
void SetMachineRoot(const std::string& folder);

}  // namespace Norvik::Platform
