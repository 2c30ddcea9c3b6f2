#pragma once

#include "machine/Gather.h"
#include "machine/SystemFiles.h"

namespace Norvik::Machine {

// The same as in Gather.h, from system files below another root.

std::vector<Common::ProcessorInfo> GatherProcessors(const SystemFiles& files);
Common::MemoryInfo GatherMemory(const SystemFiles& files);
/// Sizes of volumes come from the mount points of the real system.
std::vector<Common::PhysicalDiskInfo> GatherDisks(const SystemFiles& files);
/// IPv4 addresses come from the real system.
std::vector<Common::NetworkAdapterInfo> GatherAdapters(const SystemFiles& files);
/// The kernel's part comes from the real system.
Common::OperatingSystemInfo GatherOperatingSystem(const SystemFiles& files);
void CompleteSetup(const SystemFiles& files, Common::SetupInfo& setup);
std::string GatherDomain(const SystemFiles& files);

}  // namespace Norvik::Machine
