#include "module/Entities/DeviceInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::DeviceInfo>;
