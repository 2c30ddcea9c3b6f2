#pragma once

#include <cstdint>
#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// A partition of a disk. Offset and size in bytes.
struct NORVIK_COMMON_API DiskPartitionInfo final : InventoryRecord<DiskPartitionInfo> {
  DiskPartitionInfo() = default;
  explicit DiskPartitionInfo(const ptree& node) { Read(node); }

  std::string device;
  std::uint64_t index = 0;  ///< number in the partition table, from 1
  std::string type;
  std::uint64_t offsetBytes = 0;
  std::uint64_t sizeBytes = 0;
  std::string label;
  bool bootable = false;
  std::string fileSystemType;
  bool readOnly = false;
  std::string uuid;

  static constexpr auto Fields() {
    return FieldTable(
        Field("device", &DiskPartitionInfo::device), Field("index", &DiskPartitionInfo::index),
        Field("type", &DiskPartitionInfo::type),
        Field("offsetBytes", &DiskPartitionInfo::offsetBytes),
        Field("sizeBytes", &DiskPartitionInfo::sizeBytes),
        Field("label", &DiskPartitionInfo::label), Field("bootable", &DiskPartitionInfo::bootable),
        Field("fileSystemType", &DiskPartitionInfo::fileSystemType),
        Field("readOnly", &DiskPartitionInfo::readOnly), Field("uuid", &DiskPartitionInfo::uuid));
  }
  static constexpr auto Key() { return &DiskPartitionInfo::device; }
};

}  // namespace Norvik::Common
