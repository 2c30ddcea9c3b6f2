#include "module/Entities/FeaturesInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::FeaturesInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::FeaturesInfo>;
