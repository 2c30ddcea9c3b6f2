#pragma once

#include <functional>
#include <string>

namespace Norvik::Platform {

/// The path under which to open a file of the machine, given its absolute path. That is the path
/// itself, unless a recorded machine is in force: then it is the path below that machine's root,
/// and a file that the recording does not have does not exist. Relative paths are returned
/// unchanged.
std::string MachinePath(const std::string& absolute);

/// Whether the machine has a file or folder at an absolute path. Nothing of it is read.
bool MachineHas(const std::string& absolute);

/// Learns of each absolute path that is asked for, before it is opened; on any thread. `isOpened`
/// is false for a path whose existence alone is asked for.
using PathObserver = std::function<void(const std::string& absolute, bool isOpened)>;

/// Sets the observer; an empty one ends the observation. Call it while no other thread uses
/// `MachinePath`.
void SetPathObserver(PathObserver observer);

/// Sets the root of a recorded machine; an empty text restores the real one. Call it while no other
/// thread uses `MachinePath`.
void SetMachineRoot(const std::string& folder);

}  // namespace Norvik::Platform
