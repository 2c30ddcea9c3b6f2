#include "common/records/SoftwareRegisteredInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<SoftwareRegisteredInfo>;
template class InventoryRecord<SoftwareRegisteredInfo>;

}  // namespace Norvik::Common
