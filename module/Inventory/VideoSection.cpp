#include "module/Inventory/VideoSection.h"

#include <boost/format.hpp>
#include <cstdint>
#include <locale>
#include <optional>
#include <string>
#include <utility>

#include "common/log/Logger.h"
#include "module/Inventory/RegistryProperties.h"
#include "module/Inventory/ToolOutput.h"
#include "platform/CfText.h"
#include "platform/ScopedHandle.h"
#include "platform/SystemLog.h"

namespace Norvik::KOB {

namespace {

using Platform::CfRef;
using Platform::IoObject;

constexpr char ACCELERATOR_CLASS[] = "IOAccelerator";
constexpr char VENDOR_COMMAND[] =
    R"(system_profiler SPDisplaysDataType | grep -i "Vendor" | awk -F ':' '{print $2;exit}')";
constexpr char CHIPSET_COMMAND[] =
    R"(system_profiler SPDisplaysDataType | grep -i "Chipset Model" )"
    R"(| awk -F ':' '{print $2;exit}')";
constexpr char BIOS_VERSION_COMMAND[] =
    R"(system_profiler SPHardwareDataType | grep -i "Version" | awk -F ':' '{print $2;exit}')";
constexpr char DRIVER_VERSION_COMMAND[] =
    R"(system_profiler SPHardwareDataType | grep -i "EFI Driver Version" )"
    R"(| awk -F ':' '{print $2;exit}')";

constexpr double UTILIZATION_PER_PERCENT = 10'000'000.0;
constexpr double PERCENT = 100.0;

/// Iterator over the accelerators; empty if the machine has none.
IoObject Accelerators() {
  IoObject iterator;
  const CFMutableDictionaryRef matching = IOServiceMatching(ACCELERATOR_CLASS);
  if (matching) IOServiceGetMatchingServices(MACH_PORT_NULL, matching, iterator.Out());
  return iterator;
}

/// Fills the record from the accelerator and its parent. False if the record must be left out.
bool ReadDevice(const IoObject& accelerator, VideoInfo& video) {
  RegistryProperties properties(accelerator.Get());
  if (!properties) return false;
  video.size = properties.Number("VRAM,totalMB") << 20;
  video.driverName = properties.Text("CFBundleIdentifier");
  video.dac = properties.Text("IOProviderClass");

  IoObject parent;
  IORegistryEntryGetParentEntry(accelerator.Get(), kIOServicePlane, parent.Out());
  properties = RegistryProperties(parent.Get());
  video.chipset = video.name = properties.Text("model");
  video.manufacturer = properties.Text("vendor-id");
  return video.driverName != "com.unknown.bundle" && video.chipset != "Unknown Unknown";
}

/// Fills what is missing from reports. Runs each of them again for every accelerator, because no
/// collector caches the output of a tool.
void FillFromTools(VideoInfo& video) {
  if (video.manufacturer.empty()) video.manufacturer = OutputOf(VENDOR_COMMAND);
  if (video.chipset.empty()) video.chipset = video.name = OutputOf(CHIPSET_COMMAND);
  video.date = 0;
  video.versionBios = OutputOf(BIOS_VERSION_COMMAND);
  video.version = OutputOf(DRIVER_VERSION_COMMAND);
}

/// Empty optional if the key is absent or its value is not a number.
std::optional<double> NumberOf(CFDictionaryRef dictionary, const char* key) {
  const CFTypeRef value = CFDictionaryGetValue(dictionary, Platform::CfTextOf(key).Get());
  if (!value || CFGetTypeID(value) != CFNumberGetTypeID()) return {};
  std::int64_t number = 0;
  CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number);
  return static_cast<double>(number);
}

void DisplayStatistics(CFDictionaryRef statistics) {
  const auto utilization = NumberOf(statistics, "GPU Core Utilization");
  const auto free = NumberOf(statistics, "vramFreeBytes");
  const auto used = NumberOf(statistics, "vramUsedBytes");
  if (!utilization || !free || !used) return;
  const double memory = *used / (*free + *used) * PERCENT;
  Platform::WriteSystemLog((boost::format("GPU: %.3f%% VRAM: %.3f%%", std::locale::classic()) %
                            (*utilization / UTILIZATION_PER_PERCENT) % memory)
                               .str());
}

}  // namespace

void VideoSection::GetInfo(std::list<VideoInfo>& result) {
  NORVIK_SCOPE();
  const IoObject accelerators = Accelerators();
  if (!accelerators) return;
  while (const IoObject accelerator{IOIteratorNext(accelerators.Get())}) {
    VideoInfo video;
    if (!ReadDevice(accelerator, video)) continue;
    FillFromTools(video);
    result.push_back(std::move(video));
  }
}

void GetGPUList(unsigned int& parent, std::list<unsigned int>& out) {
  NORVIK_SCOPE();
  displayGraphicsInfo();
  IoObject iterator;
  if (parent != IO_OBJECT_NULL) {
    IORegistryEntryGetChildIterator(parent, kIOServicePlane, iterator.Out());
  }
  // Deliberately replaces the iterator over the parent's children: the result is all accelerators.
  iterator = Accelerators();
  if (!iterator) return;
  while (const io_object_t accelerator = IOIteratorNext(iterator.Get())) {
    out.push_back(accelerator);
  }
}

void displayGraphicsInfo() {
  const CfRef<CFStringRef> key = Platform::CfTextOf("PerformanceStatistics");
  const IoObject accelerators = Accelerators();
  if (!accelerators) return;
  while (const IoObject accelerator{IOIteratorNext(accelerators.Get())}) {
    const CfRef<CFTypeRef> statistics(
        IORegistryEntryCreateCFProperty(accelerator.Get(), key.Get(), kCFAllocatorDefault, 0));
    if (!statistics || CFGetTypeID(statistics.Get()) != CFDictionaryGetTypeID()) continue;
    DisplayStatistics(static_cast<CFDictionaryRef>(statistics.Get()));
  }
}

}  // namespace Norvik::KOB
