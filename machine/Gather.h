#pragma once

#include <memory>
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

// The facts of the machine that each system reports in its own way: machine/apple/ and
// machine/linux/ have one source per fact. Those of a Mac are gathered on macOS, and elsewhere
// while a recorded machine is in force. A fact that cannot be found or read is left empty; no
// function throws for it. On a Mac some start a tool and wait for it.

/// The machine's SMBIOS table. Never null; not valid if there is no table or this process may not
/// read it.
std::shared_ptr<Common::SmBios> ReadSmBios();
/// One for each package, in the order of their numbers.
std::vector<Common::ProcessorInfo> GatherProcessors();
/// Without what only SMBIOS knows.
Common::MemoryInfo GatherMemory();
/// The physical disks, with their partitions and the volumes mounted from them.
std::vector<Common::PhysicalDiskInfo> GatherDisks();
/// The network adapters that belong to the machine, without loopback, sorted by name.
std::vector<Common::NetworkAdapterInfo> GatherAdapters();
Common::OperatingSystemInfo GatherOperatingSystem();
/// Fills the fields that SMBIOS left empty.
void CompleteSetup(Common::SetupInfo& setup);
/// The domain of the machine, without the host name.
std::string GatherDomain();

}  // namespace Norvik::Machine
