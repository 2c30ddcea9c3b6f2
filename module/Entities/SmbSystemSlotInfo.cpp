#include "module/Entities/SmbSystemSlotInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::SmbSystemSlotInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::SmbSystemSlotInfo>;
