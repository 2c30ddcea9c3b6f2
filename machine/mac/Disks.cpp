#include "common/commands/CommandRunner.h"
#include "machine/DiskutilText.h"
#include "machine/Gather.h"

namespace Norvik::Machine {

std::vector<Common::PhysicalDiskInfo> GatherDisks() {
  const std::string info = Common::CommandRunner::ExecCommand("/usr/sbin/diskutil info -all");
  return ParseDiskutil(info, Common::CommandRunner::ExecCommand("/usr/sbin/diskutil list"));
}

}  // namespace Norvik::Machine
