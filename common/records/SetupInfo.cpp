#include "common/records/SetupInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::Common {

template class WrittenRecord<SetupInfo>;
template class InventoryRecord<SetupInfo>;

}  // namespace Norvik::Common
