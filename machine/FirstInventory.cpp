#include "machine/FirstInventory.h"

#include <utility>

#include "common/identification/HostInfoProvider.h"
#include "common/progress/Progress.h"
#include "common/text/Text.h"
#include "machine/Gather.h"
#include "machine/SmbiosFacts.h"

namespace Norvik::Machine {

using namespace Common;

namespace {

/// Gathers what becomes these sections of the document.
template <class Gather>
auto Reported(SectionKeys keys, Gather gather) {
  const SectionScope progress(std::move(keys));
  return gather();
}

}  // namespace

FirstInventoryInfo GatherFirstInventory(const SmBios& smBios) {
  FirstInventoryInfo info;
  info.memory = Reported({"memory", "memorySlot"}, [&] {
    MemoryInfo memory = GatherMemory();
    AddMemory(smBios, memory);
    return memory;
  });
  info.setup = Reported({"setup", "portConnectors"}, [&] {
    SetupInfo setup = SetupOf(smBios);
    CompleteSetup(setup);
    return setup;
  });
  info.operatingSystem = Reported({"os"}, [] { return GatherOperatingSystem(); });
  info.hostName = WxStringFromStdString(HostInfoProvider::GetHostName());
  info.domain = WxStringFromStdString(GatherDomain());
  info.operatingSystemType = info.operatingSystem.family;
  info.architecture = info.operatingSystem.architecture;
  info.kernel = info.operatingSystem.kernelVersion;
  info.networkAdapters = Reported({"networkAdapter"}, [] { return GatherAdapters(); });
  info.physicalDisks = Reported({"disk"}, [] { return GatherDisks(); });
  info.processors = Reported({"processorSlot"}, [&] {
    std::vector<ProcessorInfo> processors = GatherProcessors();
    AddProcessors(smBios, processors);
    return processors;
  });
  return info;
}

}  // namespace Norvik::Machine
