#include "common/records/DiskPartitionInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<DiskPartitionInfo>;
template class InventoryRecord<DiskPartitionInfo>;

}  // namespace Norvik::Common
