#pragma once

#include <tuple>

#include "module/Entities/InventoryKOBInfo.h"
#include "module/IncrementalInventory/Entities/DeletedRecord.h"

namespace Norvik::KOB {

// For each list of the inventory: what is kept of a record, and the class of the deleted record.

template <>
constexpr auto KeptFields<CdromInfo>() {
  return FieldTable(Keep("manufacturer", &CdromInfo::manufacturer),
                    Keep("mediaType", &CdromInfo::mediaType), Keep("model", &CdromInfo::model),
                    Keep("pnpDeviceId", &CdromInfo::pnpDeviceId),
                    Keep("serial", &CdromInfo::serial));
}
struct CdromDeletedInfo final : DeletedRecord<CdromInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<FeaturesInfo>() {
  return FieldTable(KeepAsWideText("version", &FeaturesInfo::version));
}
struct FeaturesDeletedInfo final : DeletedRecord<FeaturesInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<HardwareInfo>() {
  return FieldTable(
      Keep("manufacturer", &HardwareInfo::manufacturer), Keep("name", &HardwareInfo::name),
      Keep("pnpDeviceId", &HardwareInfo::pnpDeviceId), Keep("type", &HardwareInfo::type));
}
struct HardwareDeletedInfo final : DeletedRecord<HardwareInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<KeyboardInfo>() {
  return FieldTable(Keep("description", &KeyboardInfo::description),
                    Keep("manufacturer", &KeyboardInfo::manufacturer),
                    Keep("pnpDeviceId", &KeyboardInfo::pnpDeviceId));
}
struct KeyboardDeletedInfo final : DeletedRecord<KeyboardInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<LocalUserInfo::GroupSettings>() {
  return FieldTable(Keep("name", &LocalUserInfo::GroupSettings::name));
}
struct LocalUserDeletedGroupInfo final : DeletedRecord<LocalUserInfo::GroupSettings> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<LocalUserInfo::UserSettings>() {
  return FieldTable(Keep("userName", &LocalUserInfo::UserSettings::userName));
}
struct LocalUserDeletedUserInfo final : DeletedRecord<LocalUserInfo::UserSettings> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<MonitorInfo>() {
  return FieldTable(Keep("manufacturer", &MonitorInfo::manufacturer),
                    Keep("model", &MonitorInfo::model), Keep("name", &MonitorInfo::name),
                    Keep("serial", &MonitorInfo::serial));
}
struct MonitorDeletedInfo final : DeletedRecord<MonitorInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::NetworkAdapterInfo>() {
  return FieldTable(Keep("manufacturer", &Common::NetworkAdapterInfo::manufacturer),
                    Keep("name", &Common::NetworkAdapterInfo::name),
                    Keep("type", &Common::NetworkAdapterInfo::type));
}
struct NetworkAdapterDeletedInfo final : DeletedRecord<Common::NetworkAdapterInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<NetworkDriveInfo>() {
  return FieldTable(Keep("path", &NetworkDriveInfo::path), Keep("unit", &NetworkDriveInfo::unit));
}
struct NetworkDriveDeletedInfo final : DeletedRecord<NetworkDriveInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::PhysicalDiskInfo>() {
  return FieldTable(Keep("manufacturer", &Common::PhysicalDiskInfo::manufacturer),
                    Keep("mediaType", &Common::PhysicalDiskInfo::mediaType),
                    Keep("model", &Common::PhysicalDiskInfo::model),
                    Keep("pnpDeviceId", &Common::PhysicalDiskInfo::pnpDeviceId),
                    Keep("serial", &Common::PhysicalDiskInfo::serial));
}
struct PhysicalDiskDeletedInfo final : DeletedRecord<Common::PhysicalDiskInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<PrinterInfo>() {
  return FieldTable(Keep("driverName", &PrinterInfo::driverName),
                    Keep("manufacturer", &PrinterInfo::manufacturer),
                    Keep("name", &PrinterInfo::name));
}
struct PrinterDeletedInfo final : DeletedRecord<PrinterInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::ProcessorInfo>() {
  return FieldTable(Keep("index", &Common::ProcessorInfo::index),
                    KeepAsWideText("manufacturer", &Common::ProcessorInfo::manufacturer),
                    KeepAsWideText("model", &Common::ProcessorInfo::model));
}
struct ProcessorDeletedInfo final : DeletedRecord<Common::ProcessorInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<RunCommandInfo>() {
  return FieldTable(Keep("command", &RunCommandInfo::command), Keep("name", &RunCommandInfo::name),
                    Keep("path", &RunCommandInfo::path));
}
struct RunCommandDeletedInfo final : DeletedRecord<RunCommandInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<ServiceInfo>() {
  return FieldTable(Keep("displayName", &ServiceInfo::displayName),
                    Keep("name", &ServiceInfo::name));
}
struct ServiceDeletedInfo final : DeletedRecord<ServiceInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<SharedResourceInfo>() {
  return FieldTable(Keep("name", &SharedResourceInfo::name));
}
struct SharedResourceDeletedInfo final : DeletedRecord<SharedResourceInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::SmbMemoryDeviceInfo>() {
  return FieldTable(Keep("manufacturer", &Common::SmbMemoryDeviceInfo::manufacturer),
                    Keep("model", &Common::SmbMemoryDeviceInfo::model),
                    Keep("name", &Common::SmbMemoryDeviceInfo::name),
                    Keep("serial", &Common::SmbMemoryDeviceInfo::serial));
}
struct SmbMemoryDeviceDeletedInfo final : DeletedRecord<Common::SmbMemoryDeviceInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::SmbPortConnectorInfo>() {
  return FieldTable(Keep("erd", &Common::SmbPortConnectorInfo::erd),
                    Keep("name", &Common::SmbPortConnectorInfo::name),
                    Keep("type", &Common::SmbPortConnectorInfo::type));
}
struct SmbPortConnectorDeletedInfo final : DeletedRecord<Common::SmbPortConnectorInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<SmbSystemSlotInfo>() {
  return FieldTable(Keep("slotId", &SmbSystemSlotInfo::slotId));
}
struct SmbSystemSlotDeletedInfo final : DeletedRecord<SmbSystemSlotInfo> {
  using DeletedRecord::DeletedRecord;
};

template <>
constexpr auto KeptFields<Common::SoftwareRegisteredInfo>() {
  return FieldTable(Keep("name", &Common::SoftwareRegisteredInfo::name),
                    Keep("productCode", &Common::SoftwareRegisteredInfo::productCode),
                    Keep("softwareKey", &Common::SoftwareRegisteredInfo::softwareKey),
                    Keep("version", &Common::SoftwareRegisteredInfo::version));
}
struct SoftwareDeletedInfo final : DeletedRecord<Common::SoftwareRegisteredInfo> {
  using DeletedRecord::DeletedRecord;
};

// Deliberately the version under "driverName": that is where the server looks for it.
template <>
constexpr auto KeptFields<VideoInfo>() {
  return FieldTable(Keep("driverName", &VideoInfo::version),
                    Keep("manufacturer", &VideoInfo::manufacturer), Keep("name", &VideoInfo::name));
}
struct VideoDeletedInfo final : DeletedRecord<VideoInfo> {
  using DeletedRecord::DeletedRecord;
};

/// Finds the deleted record of a source among those of a list.
template <class Deleted>
struct DeletedRecordEntry {
  static Deleted Of(const typename Deleted::Source* source);
};
template <class... Deleted>
struct DeletedRecordList : DeletedRecordEntry<Deleted>... {
  using DeletedRecordEntry<Deleted>::Of...;
};
using DeletedRecords =
    DeletedRecordList<CdromDeletedInfo, FeaturesDeletedInfo, HardwareDeletedInfo,
                      KeyboardDeletedInfo, LocalUserDeletedGroupInfo, LocalUserDeletedUserInfo,
                      MonitorDeletedInfo, NetworkAdapterDeletedInfo, NetworkDriveDeletedInfo,
                      PhysicalDiskDeletedInfo, PrinterDeletedInfo, ProcessorDeletedInfo,
                      RunCommandDeletedInfo, ServiceDeletedInfo, SharedResourceDeletedInfo,
                      SmbMemoryDeviceDeletedInfo, SmbPortConnectorDeletedInfo,
                      SmbSystemSlotDeletedInfo, SoftwareDeletedInfo, VideoDeletedInfo>;

/// The class that tells of a `Source` that has gone.
template <class Source>
using DeletedRecordOf = decltype(DeletedRecords::Of(static_cast<const Source*>(nullptr)));

}  // namespace Norvik::KOB
