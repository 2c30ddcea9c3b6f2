#include "common/records/SmbPortConnectorInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<SmbPortConnectorInfo>;
template class InventoryRecord<SmbPortConnectorInfo>;

}  // namespace Norvik::Common
