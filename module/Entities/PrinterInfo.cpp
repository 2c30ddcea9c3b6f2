#include "module/Entities/PrinterInfo.h"

#include "common/records/InventoryRecordDefinition.h"

template class Norvik::Common::WrittenRecord<Norvik::KOB::PrinterInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::PrinterInfo>;
