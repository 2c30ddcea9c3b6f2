#include "module/Entities/RunCommandInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::RunCommandInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::RunCommandInfo>;
