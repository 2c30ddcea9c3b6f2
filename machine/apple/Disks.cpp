#include "common/commands/CommandRunner.h"
#include "machine/DiskutilText.h"
#include "machine/apple/GatherFromMac.h"

namespace Norvik::Machine::Mac {

std::vector<Common::PhysicalDiskInfo> GatherDisks() {
  const std::string info = Common::CommandRunner::ExecCommand("diskutil info -all");
  return ParseDiskutil(info, Common::CommandRunner::ExecCommand("diskutil list"));
}

}  // namespace Norvik::Machine::Mac
