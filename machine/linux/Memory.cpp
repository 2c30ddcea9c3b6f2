#include <unistd.h>

#include "machine/SystemText.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

using namespace Common;

MemoryInfo GatherMemory(const SystemFiles& files) {
  constexpr std::uint64_t KIB = 1024;
  const auto entries = ParseEntries(files.Bytes("/proc/meminfo"), ':');
  const auto bytesOf = [&](const char* key) { return LeadingNumber(ValueOf(entries, key)) * KIB; };
  MemoryInfo memory;
  memory.totalBytes = bytesOf("MemTotal");
  memory.swapBytes = bytesOf("SwapTotal");
  memory.hugePageBytes = bytesOf("Hugepagesize");
  const long page = ::sysconf(_SC_PAGESIZE);
  if (page > 0) memory.pageBytes = static_cast<std::uint64_t>(page);
  return memory;
}

}  // namespace Norvik::Machine
