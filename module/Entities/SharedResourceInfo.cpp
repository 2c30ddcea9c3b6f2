#include "module/Entities/SharedResourceInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::SharedResourceInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::SharedResourceInfo>;
