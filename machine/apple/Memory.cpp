#include "machine/apple/GatherFromMac.h"
#include "machine/apple/Sysctl.h"

namespace Norvik::Machine::Mac {

Common::MemoryInfo GatherMemory() {
  Common::MemoryInfo memory;
  // No swap: the system creates and removes swap files as it needs them.
  memory.totalBytes = SysctlNumber("hw.memsize");
  memory.pageBytes = SysctlNumber("hw.pagesize");
  return memory;
}

}  // namespace Norvik::Machine::Mac
