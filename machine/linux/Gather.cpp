#include "machine/Gather.h"

#include "machine/apple/GatherFromMac.h"
#include "machine/linux/GatherFromFiles.h"
#include "platform/RecordedMachine.h"

namespace Norvik::Machine {

using namespace Common;
using Platform::IsMachineRecorded;

std::shared_ptr<SmBios> ReadSmBios() {
  return IsMachineRecorded() ? Mac::ReadSmBios() : ReadSmBios(SystemFiles());
}

std::vector<ProcessorInfo> GatherProcessors() {
  return IsMachineRecorded() ? Mac::GatherProcessors() : GatherProcessors(SystemFiles());
}

MemoryInfo GatherMemory() {
  return IsMachineRecorded() ? Mac::GatherMemory() : GatherMemory(SystemFiles());
}

std::vector<PhysicalDiskInfo> GatherDisks() {
  return IsMachineRecorded() ? Mac::GatherDisks() : GatherDisks(SystemFiles());
}

std::vector<NetworkAdapterInfo> GatherAdapters() {
  return IsMachineRecorded() ? Mac::GatherAdapters() : GatherAdapters(SystemFiles());
}

OperatingSystemInfo GatherOperatingSystem() {
  return IsMachineRecorded() ? Mac::GatherOperatingSystem() : GatherOperatingSystem(SystemFiles());
}

void CompleteSetup(SetupInfo& setup) {
  IsMachineRecorded() ? Mac::CompleteSetup(setup) : CompleteSetup(SystemFiles(), setup);
}

std::string GatherDomain() {
  return IsMachineRecorded() ? Mac::GatherDomain() : GatherDomain(SystemFiles());
}

}  // namespace Norvik::Machine
