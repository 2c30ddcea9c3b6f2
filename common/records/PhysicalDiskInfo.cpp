#include "common/records/PhysicalDiskInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<PhysicalDiskInfo>;
template class InventoryRecord<PhysicalDiskInfo>;

}  // namespace Norvik::Common
