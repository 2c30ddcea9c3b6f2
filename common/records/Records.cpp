#include <string>

#include "common/records/DiskPartitionInfo.h"
#include "common/records/InventoryRecordDefinition.h"
#include "common/records/LogicalDiskInfo.h"
#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"
#include "common/records/SmbMemoryDeviceInfo.h"
#include "common/records/SmbPortConnectorInfo.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

namespace {

// Not by a stream, whose locale may group the digits.
std::string TreeText(std::uint64_t number) { return std::to_string(number); }
std::string TreeText(const std::string& text) { return text; }

}  // namespace

LogicalDiskInfo::operator ptree() const {
  ptree tree;
  const auto add = [&](const auto& field) {
    tree.push_back({field.key, ptree(TreeText(this->*field.member))});
  };
  std::apply([&](const auto&... field) { (add(field), ...); }, Fields());
  return tree;
}

template class WrittenRecord<DiskPartitionInfo>;
template class InventoryRecord<DiskPartitionInfo>;
template class WrittenRecord<LogicalDiskInfo>;
template class InventoryRecord<LogicalDiskInfo>;
template class WrittenRecord<MemoryInfo>;
template class InventoryRecord<MemoryInfo>;
template class WrittenRecord<NetworkAdapterInfo>;
template class InventoryRecord<NetworkAdapterInfo>;
template class WrittenRecord<OperatingSystemInfo>;
template class InventoryRecord<OperatingSystemInfo>;
template class WrittenRecord<PhysicalDiskInfo>;
template class InventoryRecord<PhysicalDiskInfo>;
template class WrittenRecord<ProcessorInfo>;
template class InventoryRecord<ProcessorInfo>;
template class WrittenRecord<SetupInfo>;
template class InventoryRecord<SetupInfo>;
template class WrittenRecord<SmbMemoryDeviceInfo>;
template class InventoryRecord<SmbMemoryDeviceInfo>;
template class WrittenRecord<SmbPortConnectorInfo>;
template class InventoryRecord<SmbPortConnectorInfo>;
template class WrittenRecord<SoftwareRegisteredInfo>;
template class InventoryRecord<SoftwareRegisteredInfo>;

}  // namespace Norvik::Common
