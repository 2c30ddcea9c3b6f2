#include "module/Entities/KeyboardInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::KeyboardInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::KeyboardInfo>;
