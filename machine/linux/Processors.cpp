#include <sys/utsname.h>

#include "common/text/Text.h"
#include "machine/ProcessorText.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

CSmbCacheInfo CacheIn(const SystemFiles& files, const std::string& folder) {
  CSmbCacheInfo cache;
  cache.level = static_cast<std::uint8_t>(files.Number(folder + "level"));
  cache.type = files.Text(folder + "type");
  cache.sizeBytes = ParseCacheSize(files.Text(folder + "size"));
  cache.maximumBytes = cache.sizeBytes;
  cache.name = "L" + std::to_string(cache.level) + " " + cache.type;
  return cache;
}

}  // namespace

std::vector<ProcessorInfo> GatherProcessors(const SystemFiles& files) {
  utsname system{};
  const bool known = ::uname(&system) == 0;
  std::vector<ProcessorInfo> processors;
  for (auto& package : ParseCpuInfo(files.Bytes("/proc/cpuinfo"))) {
    ProcessorInfo& info = package.info;
    const std::string folder =
        "/sys/devices/system/cpu/cpu" + std::to_string(package.firstProcessor) + "/";
    info.maximumMhz = files.Number(folder + "cpufreq/cpuinfo_max_freq") / 1000;
    if (known) info.architecture = WxStringFromStdString(system.machine);
    for (const auto& name : files.Names(folder + "cache")) {
      if (name.rfind("index", 0) != 0) continue;
      info.caches.push_back(CacheIn(files, folder + "cache/" + name + "/"));
    }
    processors.push_back(std::move(info));
  }
  return processors;
}

}  // namespace Norvik::Machine
