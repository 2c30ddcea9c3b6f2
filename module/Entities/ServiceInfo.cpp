#include "module/Entities/ServiceInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::ServiceInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::ServiceInfo>;
