#include "module/Entities/VideoInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::VideoInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::VideoInfo>;
