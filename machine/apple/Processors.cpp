#include <algorithm>

#include "common/text/Text.h"
#include "machine/SystemText.h"
#include "machine/apple/GatherFromMac.h"
#include "machine/apple/Sysctl.h"

namespace Norvik::Machine::Mac {

namespace {

using namespace Common;

constexpr std::uint64_t HERTZ_PER_MEGAHERTZ = 1'000'000;

bool IsAppleSilicon() { return SysctlNumber("hw.optional.arm64") != 0; }

std::string IdentifierOf() {
  if (IsAppleSilicon()) return "Family " + std::to_string(SysctlNumber("hw.cpufamily"));
  return "Family " + std::to_string(SysctlNumber("machdep.cpu.family")) + " Model " +
         std::to_string(SysctlNumber("machdep.cpu.model")) + " Stepping " +
         std::to_string(SysctlNumber("machdep.cpu.stepping"));
}

void AddCaches(ProcessorInfo& info) {
  static constexpr struct {
    const char* name;
    std::uint8_t level;
    const char* type;
  } CACHES[] = {{"hw.l1dcachesize", 1, "Data"},
                {"hw.l1icachesize", 1, "Instruction"},
                {"hw.l2cachesize", 2, "Unified"},
                {"hw.l3cachesize", 3, "Unified"}};
  for (const auto& known : CACHES) {
    CSmbCacheInfo cache;
    cache.level = known.level;
    cache.type = known.type;
    cache.name = "L" + std::to_string(known.level) + " " + known.type;
    cache.sizeBytes = SysctlNumber(known.name);
    cache.maximumBytes = cache.sizeBytes;
    if (cache.sizeBytes > 0) info.caches.push_back(cache);
  }
}

}  // namespace

std::vector<ProcessorInfo> GatherProcessors() {
  const std::uint64_t packages = std::max<std::uint64_t>(1, SysctlNumber("hw.packages"));
  ProcessorInfo info;
  info.cores = SysctlNumber("hw.physicalcpu_max") / packages;
  info.threads = SysctlNumber("hw.logicalcpu_max") / packages;
  info.maximumMhz = SysctlNumber("hw.cpufrequency_max") / HERTZ_PER_MEGAHERTZ;
  info.busMhz = SysctlNumber("hw.busfrequency") / HERTZ_PER_MEGAHERTZ;
  info.model = SysctlText("machdep.cpu.brand_string");
  info.manufacturer = IsAppleSilicon() ? "Apple" : SysctlText("machdep.cpu.vendor");
  info.identifier = IdentifierOf();
  info.architecture = IsAppleSilicon() ? "arm64" : "x86_64";
  for (const auto& feature : WordsOf(SysctlText("machdep.cpu.features"))) {
    info.features.push_back(WxStringFromStdString(feature));
  }
  AddCaches(info);
  std::vector<ProcessorInfo> processors;
  for (std::uint64_t index = 0; index < packages; ++index) {
    info.index = index;
    processors.push_back(info);
  }
  return processors;
}

}  // namespace Norvik::Machine::Mac
