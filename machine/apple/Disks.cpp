#include "common/commands/CommandRunner.h"
#include "machine/DiskutilText.h"
#include "machine/apple/GatherFromMac.h"

namespace Norvik::Machine::Mac {

std::vector<Common::PhysicalDiskInfo> GatherDisks() {
  return ParseDiskutilInfo(Common::CommandRunner::ExecCommand("diskutil info -all"));
}

}  // namespace Norvik::Machine::Mac
