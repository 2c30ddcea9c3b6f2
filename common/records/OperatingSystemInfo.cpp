#include "common/records/OperatingSystemInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<OperatingSystemInfo>;
template class InventoryRecord<OperatingSystemInfo>;

}  // namespace Norvik::Common
