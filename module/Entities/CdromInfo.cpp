#include "module/Entities/CdromInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::CdromInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::CdromInfo>;
