#pragma once

#include <string>

namespace Norvik::Platform {

/// The path under which to open a file of the machine, given its absolute path. That is the path
/// itself, unless a recorded machine is in force: then it is the path below that machine's root,
/// and a file that the recording does not have does not exist. Relative paths are returned
/// unchanged.
std::string MachinePath(const std::string& absolute);

/// Whether the machine has a file or folder at an absolute path. Nothing of it is read. Throws
/// `std::filesystem::filesystem_error` if that cannot be found out.
bool MachineHas(const std::string& absolute);

/// Sets the root of a recorded machine; an empty text restores the real one. Call it while no other
/// thread uses `MachinePath`.
void SetMachineRoot(const std::string& folder);

}  // namespace Norvik::Platform
