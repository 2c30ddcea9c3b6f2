#include "machine/Gather.h"

#include "machine/apple/GatherFromMac.h"

namespace Norvik::Machine {

using namespace Common;

std::shared_ptr<SmBios> ReadSmBios() { return Mac::ReadSmBios(); }
std::vector<ProcessorInfo> GatherProcessors() { return Mac::GatherProcessors(); }
MemoryInfo GatherMemory() { return Mac::GatherMemory(); }
std::vector<PhysicalDiskInfo> GatherDisks() { return Mac::GatherDisks(); }
std::vector<NetworkAdapterInfo> GatherAdapters() { return Mac::GatherAdapters(); }
OperatingSystemInfo GatherOperatingSystem() { return Mac::GatherOperatingSystem(); }
void CompleteSetup(SetupInfo& setup) { Mac::CompleteSetup(setup); }
std::string GatherDomain() { return Mac::GatherDomain(); }

}  // namespace Norvik::Machine
