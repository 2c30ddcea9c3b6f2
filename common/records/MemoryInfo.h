#pragma once

#include <cstdint>
#include <list>

#include "common/records/InventoryRecord.h"
#include "common/records/SmbMemoryDeviceInfo.h"

namespace Norvik::Common {

/// Main memory as a whole. Sizes in bytes.
struct NORVIK_COMMON_API MemoryInfo final : InventoryRecord<MemoryInfo> {
  MemoryInfo() = default;
  explicit MemoryInfo(const ptree& node) { Read(node); }

  std::uint16_t slotCount = 0;
  std::uint64_t totalBytes = 0;
  std::uint64_t swapBytes = 0;
  std::uint64_t maximumBytes = 0;  ///< capacity of the board
  std::uint64_t pageBytes = 0;
  std::uint64_t hugePageBytes = 0;
  std::uint64_t location = 0;         ///< code of the SMBIOS memory array
  std::uint64_t errorCorrection = 0;  ///< code of the SMBIOS memory array
  std::list<SmbMemoryDeviceInfo> devices;

  static constexpr auto Fields() {
    return FieldTable(Field("slotCount", &MemoryInfo::slotCount),
                      Field("totalBytes", &MemoryInfo::totalBytes),
                      Field("swapBytes", &MemoryInfo::swapBytes),
                      Field("maximumBytes", &MemoryInfo::maximumBytes),
                      Field("pageBytes", &MemoryInfo::pageBytes),
                      Field("hugePageBytes", &MemoryInfo::hugePageBytes),
                      Field("location", &MemoryInfo::location),
                      Field("errorCorrection", &MemoryInfo::errorCorrection),
                      Records("devices", &MemoryInfo::devices));
  }
};

}  // namespace Norvik::Common
