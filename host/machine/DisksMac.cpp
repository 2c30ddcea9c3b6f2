#include "common/commands/CommandRunner.h"
#include "host/machine/DiskutilText.h"
#include "host/machine/Gather.h"

namespace Norvik::Host {

std::vector<Common::PhysicalDiskInfo> GatherDisks() {
  return ParseDiskutilInfo(Common::CommandRunner::ExecCommand("/usr/sbin/diskutil info -all"));
}

}  // namespace Norvik::Host
