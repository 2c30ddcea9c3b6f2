#include "module/Entities/LocalUserInfo.h"

#include "common/records/InventoryRecordDefinition.h"

using Norvik::KOB::LocalUserInfo;

template class Norvik::Common::WrittenRecord<LocalUserInfo::GroupSettings>;
template class Norvik::Common::InventoryRecord<LocalUserInfo::GroupSettings>;
template class Norvik::Common::WrittenRecord<LocalUserInfo::UserSettings>;
template class Norvik::Common::InventoryRecord<LocalUserInfo::UserSettings>;
