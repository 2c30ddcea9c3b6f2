#include "module/Entities/NetworkDriveInfo.h"

#include "common/records/InventoryRecordDefinition.h"

namespace Norvik::KOB {

NetworkDriveInfo::NetworkDriveInfo(ptree node) { Read(node); }

}  // namespace Norvik::KOB

template class Norvik::Common::WrittenRecord<Norvik::KOB::NetworkDriveInfo>;
template class Norvik::Common::InventoryRecord<Norvik::KOB::NetworkDriveInfo>;
