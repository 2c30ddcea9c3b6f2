#include "common/records/ProcessorInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<ProcessorInfo>;
template class InventoryRecord<ProcessorInfo>;

}  // namespace Norvik::Common
