#pragma once

#include "machine/Gather.h"

/// The functions of Gather.h as a Mac answers them. They compile and run on every system, since a
/// recorded machine is a Mac as well.
namespace Norvik::Machine::Mac {

std::shared_ptr<Common::SmBios> ReadSmBios();
std::vector<Common::ProcessorInfo> GatherProcessors();
Common::MemoryInfo GatherMemory();
std::vector<Common::PhysicalDiskInfo> GatherDisks();
std::vector<Common::NetworkAdapterInfo> GatherAdapters();
Common::OperatingSystemInfo GatherOperatingSystem();
void CompleteSetup(Common::SetupInfo& setup);
std::string GatherDomain();

}  // namespace Norvik::Machine::Mac
