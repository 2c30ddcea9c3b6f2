#include "module/Entities/HardwareInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::HardwareInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::HardwareInfo>;
