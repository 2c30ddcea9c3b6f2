#include "module/Entities/SmBiosInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::SmBiosInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::SmBiosInfo>;
