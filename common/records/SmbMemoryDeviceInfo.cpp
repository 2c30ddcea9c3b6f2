#include "common/records/SmbMemoryDeviceInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<SmbMemoryDeviceInfo>;
template class InventoryRecord<SmbMemoryDeviceInfo>;

}  // namespace Norvik::Common
