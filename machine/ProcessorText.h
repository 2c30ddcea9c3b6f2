#pragma once

#include <string>
#include <vector>

#include "common/records/ProcessorInfo.h"

namespace Norvik::Machine {

/// A package as /proc/cpuinfo tells of it.
struct ProcessorPackage {
  Common::ProcessorInfo info;
  /// Number of its first logical processor, under which /sys tells more.
  std::uint64_t firstProcessor = 0;
};

/// The packages of the text of /proc/cpuinfo, in the order of their numbers, whichever family of
/// processors wrote it.
std::vector<ProcessorPackage> ParseCpuInfo(const std::string& text);

/// Bytes of a cache size like "32K" or "1M"; 0 for anything else.
std::uint64_t ParseCacheSize(const std::string& text);

}  // namespace Norvik::Machine
