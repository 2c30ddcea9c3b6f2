#pragma once

#include <string>
#include <vector>

#include "common/identification/SmBios.h"
#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::Machine {

// The facts of the machine that each system tells in its own way: one source per fact and system.
// What cannot be found or read is left empty.

/// One for each package, in the order of their numbers.
std::vector<Common::ProcessorInfo> GatherProcessors();
/// As the system sees it; what the board knows comes from SMBIOS.
Common::MemoryInfo GatherMemory();
/// Disks with their partitions and the volumes that are mounted from them.
std::vector<Common::PhysicalDiskInfo> GatherDisks();
/// All but loopback.
std::vector<Common::NetworkAdapterInfo> GatherAdapters();
Common::OperatingSystemInfo GatherOperatingSystem();
/// Fills what SMBIOS left empty.
void CompleteSetup(Common::SetupInfo& setup);
/// The machine's domain, without its own name.
std::string GatherDomain();

}  // namespace Norvik::Machine
