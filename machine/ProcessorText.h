#pragma once

#include <functional>
#include <list>
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

/// Looks up a value of the kernel by its name; 0 or empty for a name that it does not have.
struct KernelValues {
  std::function<std::uint64_t(const std::string&)> number;
  std::function<std::string(const std::string&)> text;
};

/// The caches of a Mac. Where it has several kinds of core, those of each kind, the fastest first,
/// with the kind in the name, as in "L2 Unified (Efficiency)".
std::list<Common::CSmbCacheInfo> MacCaches(const KernelValues& values);

/// The names of an Intel Mac's processor features.
std::list<wxString> IntelFeatures(const KernelValues& values);

/// The names of the processor features in the output of `sysctl hw.optional.arm`, as in "FEAT_AES".
std::list<wxString> ParseArmFeatures(const std::string& text);

/// A cache size like "32K" or "1M" in bytes; 0 for anything else.
std::uint64_t ParseCacheSize(const std::string& text);

}  // namespace Norvik::Machine
