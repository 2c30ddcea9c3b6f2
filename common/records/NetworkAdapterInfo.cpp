#include "common/records/NetworkAdapterInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<NetworkAdapterInfo>;
template class InventoryRecord<NetworkAdapterInfo>;

}  // namespace Norvik::Common
