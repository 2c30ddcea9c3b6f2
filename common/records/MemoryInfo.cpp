#include "common/records/MemoryInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<MemoryInfo>;
template class InventoryRecord<MemoryInfo>;

}  // namespace Norvik::Common
