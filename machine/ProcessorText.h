#pragma once

#include <string>
#include <vector>

#include "common/records/ProcessorInfo.h"

namespace Norvik::Machine {

/// A processor package in /proc/cpuinfo.
struct ProcessorPackage {
  Common::ProcessorInfo info;
  /// The number of its first logical processor, which names its folder below /sys.
  std::uint64_t firstProcessor = 0;
};

/// The packages in /proc/cpuinfo, in the order of their numbers, in the format of any processor
/// family.
std::vector<ProcessorPackage> ParseCpuInfo(const std::string& text);

/// A cache size like "32K" or "1M" in bytes; 0 for anything else.
std::uint64_t ParseCacheSize(const std::string& text);

}  // namespace Norvik::Machine
