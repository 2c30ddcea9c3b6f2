#pragma once

#include "machine/Gather.h"
#include "machine/SystemFiles.h"

namespace Norvik::Machine {

// The functions of Gather.h, reading the system files below a given root. The functions without an
// argument pass the files of this machine, unless a recorded Mac is in force; tests pass others.

std::shared_ptr<Common::SmBios> ReadSmBios(const SystemFiles& files);
std::vector<Common::ProcessorInfo> GatherProcessors(const SystemFiles& files);
Common::MemoryInfo GatherMemory(const SystemFiles& files);
/// The sizes of volumes are always those of this machine's mount points.
std::vector<Common::PhysicalDiskInfo> GatherDisks(const SystemFiles& files);
/// The IPv4 addresses are always those of this machine.
std::vector<Common::NetworkAdapterInfo> GatherAdapters(const SystemFiles& files);
/// Kernel and architecture are always those of this machine.
Common::OperatingSystemInfo GatherOperatingSystem(const SystemFiles& files);
void CompleteSetup(const SystemFiles& files, Common::SetupInfo& setup);
std::string GatherDomain(const SystemFiles& files);

}  // namespace Norvik::Machine
