#include "common/records/InventoryRecordDefinition.h"
#include "module/Entities/CdromInfo.h"
#include "module/Entities/ConfigurationInfo.h"
#include "module/Entities/DeviceInfo.h"
#include "module/Entities/FeaturesInfo.h"
#include "module/Entities/GeoLocationPoint.h"
#include "module/Entities/HardwareInfo.h"
#include "module/Entities/KeyboardInfo.h"
#include "module/Entities/LocalUserInfo.h"
#include "module/Entities/MonitorInfo.h"
#include "module/Entities/NetworkDriveInfo.h"
#include "module/Entities/PermissionInfo.h"
#include "module/Entities/PrinterInfo.h"
#include "module/Entities/RunCommandInfo.h"
#include "module/Entities/ServiceInfo.h"
#include "module/Entities/SharedResourceInfo.h"
#include "module/Entities/SmBiosInfo.h"
#include "module/Entities/SmbSystemSlotInfo.h"
#include "module/Entities/VideoInfo.h"

namespace Norvik {

namespace KOB {

bool GeoLocationPoint::IsZero() const {
  return longitude == 0.0 && latitude == 0.0 && height == 0.0 && acceleration == 0.0;
}

NetworkDriveInfo::NetworkDriveInfo(ptree node) { Read(node); }

PermissionInfo::PermissionInfo(const boost::property_tree::ptree& node) {
  json::ReadFields(node, *this);
}

bool PermissionInfo::operator==(const PermissionInfo& other) const {
  return json::FieldsEqual(*this, other);
}

}  // namespace KOB

namespace Common {

template class WrittenRecord<KOB::CdromInfo>;
template class InventoryRecord<KOB::CdromInfo>;
template class WrittenRecord<KOB::ConfigurationInfo>;
template class InventoryRecord<KOB::ConfigurationInfo>;
template class WrittenRecord<KOB::DeviceInfo>;
template class WrittenRecord<KOB::FeaturesInfo>;
template class InventoryRecord<KOB::FeaturesInfo>;
template class WrittenRecord<KOB::GeoLocationPoint>;
template class InventoryRecord<KOB::GeoLocationPoint>;
template class WrittenRecord<KOB::HardwareInfo>;
template class InventoryRecord<KOB::HardwareInfo>;
template class WrittenRecord<KOB::KeyboardInfo>;
template class InventoryRecord<KOB::KeyboardInfo>;
template class WrittenRecord<KOB::LocalUserInfo::GroupSettings>;
template class InventoryRecord<KOB::LocalUserInfo::GroupSettings>;
template class WrittenRecord<KOB::LocalUserInfo::UserSettings>;
template class InventoryRecord<KOB::LocalUserInfo::UserSettings>;
template class WrittenRecord<KOB::MonitorInfo>;
template class InventoryRecord<KOB::MonitorInfo>;
template class WrittenRecord<KOB::NetworkDriveInfo>;
template class InventoryRecord<KOB::NetworkDriveInfo>;
template class WrittenRecord<KOB::PrinterInfo>;
template class InventoryRecord<KOB::PrinterInfo>;
template class WrittenRecord<KOB::RunCommandInfo>;
template class InventoryRecord<KOB::RunCommandInfo>;
template class WrittenRecord<KOB::ServiceInfo>;
template class InventoryRecord<KOB::ServiceInfo>;
template class WrittenRecord<KOB::SharedResourceInfo>;
template class InventoryRecord<KOB::SharedResourceInfo>;
template class WrittenRecord<KOB::SmBiosInfo>;
template class InventoryRecord<KOB::SmBiosInfo>;
template class WrittenRecord<KOB::SmbSystemSlotInfo>;
template class InventoryRecord<KOB::SmbSystemSlotInfo>;
template class WrittenRecord<KOB::VideoInfo>;
template class InventoryRecord<KOB::VideoInfo>;

}  // namespace Common

}  // namespace Norvik
