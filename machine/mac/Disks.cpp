#include "common/commands/CommandRunner.h"
#include "machine/DiskutilText.h"
#include "machine/Gather.h"

namespace Norvik::Machine {

std::vector<Common::PhysicalDiskInfo> GatherDisks() {
  return ParseDiskutilInfo(Common::CommandRunner::ExecCommand("/usr/sbin/diskutil info -all"));
}

}  // namespace Norvik::Machine
