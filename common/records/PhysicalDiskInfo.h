#pragma once

#include <cstdint>
#include <list>
#include <string>

#include "common/records/DiskPartitionInfo.h"
#include "common/records/InventoryRecord.h"
#include "common/records/LogicalDiskInfo.h"

namespace Norvik::Common {

/// A disk as a device, with its partitions and the volumes on them.
struct NORVIK_COMMON_API PhysicalDiskInfo final : InventoryRecord<PhysicalDiskInfo> {
  PhysicalDiskInfo() = default;
  explicit PhysicalDiskInfo(const ptree& node) { Read(node); }

  std::uint64_t sizeBytes = 0;
  std::string busType;
  std::string pnpDeviceId;  ///< device name, as in "disk0" or "sda"
  std::string manufacturer;
  std::string mediaType;  ///< "SSD" or "HDD"
  std::string model;
  std::string serial;
  std::list<LogicalDiskInfo> logicalDisks;
  std::list<DiskPartitionInfo> partitions;

  static constexpr auto Fields() {
    return FieldTable(Field("sizeBytes", &PhysicalDiskInfo::sizeBytes),
                      Field("busType", &PhysicalDiskInfo::busType),
                      Field("pnpDeviceId", &PhysicalDiskInfo::pnpDeviceId),
                      Field("manufacturer", &PhysicalDiskInfo::manufacturer),
                      Field("mediaType", &PhysicalDiskInfo::mediaType),
                      Field("model", &PhysicalDiskInfo::model),
                      Field("serial", &PhysicalDiskInfo::serial),
                      Records("logicalDisk", &PhysicalDiskInfo::logicalDisks),
                      Records("partition", &PhysicalDiskInfo::partitions));
  }
  static constexpr auto Key() { return &PhysicalDiskInfo::pnpDeviceId; }
  static constexpr auto Kept() {
    return FieldTable(Field("manufacturer", &PhysicalDiskInfo::manufacturer),
                      Field("mediaType", &PhysicalDiskInfo::mediaType),
                      Field("model", &PhysicalDiskInfo::model),
                      Field("pnpDeviceId", &PhysicalDiskInfo::pnpDeviceId),
                      Field("serial", &PhysicalDiskInfo::serial));
  }
};

}  // namespace Norvik::Common
