#include "module/Entities/ConfigurationInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::ConfigurationInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::ConfigurationInfo>;
