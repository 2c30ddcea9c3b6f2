#include "machine/FirstInventory.h"

#include "common/identification/HostInfoProvider.h"
#include "common/text/Text.h"
#include "machine/Gather.h"
#include "machine/SmbiosFacts.h"

namespace Norvik::Machine {

using namespace Common;

FirstInventoryInfo GatherFirstInventory(const SmBios& smBios) {
  FirstInventoryInfo info;
  info.memory = GatherMemory();
  AddMemory(smBios, info.memory);
  info.setup = SetupOf(smBios);
  CompleteSetup(info.setup);
  info.operatingSystem = GatherOperatingSystem();
  info.hostName = WxStringFromStdString(HostInfoProvider::GetHostName());
  info.domain = WxStringFromStdString(GatherDomain());
  info.operatingSystemType = info.operatingSystem.family;
  info.architecture = info.operatingSystem.architecture;
  info.kernel = info.operatingSystem.kernelVersion;
  info.networkAdapters = GatherAdapters();
  info.physicalDisks = GatherDisks();
  info.processors = GatherProcessors();
  AddProcessors(smBios, info.processors);
  return info;
}

}  // namespace Norvik::Machine
