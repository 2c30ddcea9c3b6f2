#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/compat/Recording.h"

// The running system, where no recorded machine is in force.

namespace Norvik::Platform {

/// The numbers of its processes, in order.
std::vector<int> RealPids();
/// What can be read of a process.
RecordedProcess RealProcess(int pid);
/// In bytes; 0 if it cannot be read.
std::uint64_t RealMemorySize();
/// As `sysctlbyname`; only a Mac has such values.
int RealSysctlByName(const char* name, void* value, std::size_t* length);

}  // namespace Norvik::Platform
