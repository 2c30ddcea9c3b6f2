#pragma once

#include <cstdint>
#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// A mounted volume.
struct NORVIK_COMMON_API LogicalDiskInfo final : InventoryRecord<LogicalDiskInfo> {
  LogicalDiskInfo() = default;
  explicit LogicalDiskInfo(const ptree& node) { Read(node); }
  /// A tree from which the constructor above makes an equal record.
  operator ptree() const;

  std::uint64_t sizeBytes = 0;
  /// Rounded down to whole GiB, so that a few bytes more or less are not a change of the machine.
  std::uint64_t freeBytes = 0;
  std::string mountPoint;
  std::string volumeName;
  std::string fileSystemType;
  std::string fileSystemName;
  std::string device;

  static constexpr auto Fields() {
    return FieldTable(Field("sizeBytes", &LogicalDiskInfo::sizeBytes),
                      Field("freeBytes", &LogicalDiskInfo::freeBytes),
                      Field("mountPoint", &LogicalDiskInfo::mountPoint),
                      Field("volumeName", &LogicalDiskInfo::volumeName),
                      Field("fileSystemType", &LogicalDiskInfo::fileSystemType),
                      Field("fileSystemName", &LogicalDiskInfo::fileSystemName),
                      Field("device", &LogicalDiskInfo::device));
  }
  static constexpr auto Key() { return &LogicalDiskInfo::mountPoint; }
};

}  // namespace Norvik::Common
