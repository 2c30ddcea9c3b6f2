#include "module/Entities/MonitorInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::MonitorInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::MonitorInfo>;
