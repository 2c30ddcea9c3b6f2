#include <algorithm>

#include "common/commands/CommandRunner.h"
#include "machine/ProcessorText.h"
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

std::list<wxString> Features(const KernelValues& values) {
  if (!IsAppleSilicon()) return IntelFeatures(values);
  // `sysctlbyname` lists no names, and new processors have new ones.
  return ParseArmFeatures(CommandRunner::ExecCommand("sysctl hw.optional.arm"));
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
  const KernelValues values = {[](const std::string& name) { return SysctlNumber(name.c_str()); },
                               [](const std::string& name) { return SysctlText(name.c_str()); }};
  info.features = Features(values);
  info.caches = MacCaches(values);
  std::vector<ProcessorInfo> processors;
  for (std::uint64_t index = 0; index < packages; ++index) {
    info.index = index;
    processors.push_back(info);
  }
  return processors;
}

}  // namespace Norvik::Machine::Mac
