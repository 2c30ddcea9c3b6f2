#pragma once

#include <tuple>
#include <utility>

#include "module/Entities/InventoryKOBInfo.h"

namespace Norvik::KOB {

/// What an incremental document says of a record that is no longer there: copies of the fields of
/// `Source::Kept()`. Written, never read or compared.
template <class Source>
class DeletedRecord final : public Common::ISerializerJson {
 public:
  explicit DeletedRecord(const Source& source)
      : values_(std::apply([&](const auto&... field) { return Values(source.*field.member...); },
                           Source::Kept())) {}

  /// An object with every key of the table, never null.
  operator json::JSON() const override {
    json::JSON object;
    Write(object, std::make_index_sequence<std::tuple_size_v<Values>>());
    return object;
  }

 private:
  template <class... Fields>
  static std::tuple<typename Fields::Value...> ValuesOf(const std::tuple<Fields...>& fields);
  using Values = decltype(ValuesOf(Source::Kept()));

  template <std::size_t... indices>
  void Write(json::JSON& object, std::index_sequence<indices...> /*all*/) const {
    const auto write = [&](const auto& field, const auto& value) {
      field.format.Write(object[field.key], value);
    };
    (write(std::get<indices>(Source::Kept()), std::get<indices>(values_)), ...);
  }

  Values values_;
};

// The names of the deleted records.
using CdromDeletedInfo = DeletedRecord<CdromInfo>;
using FeaturesDeletedInfo = DeletedRecord<FeaturesInfo>;
using HardwareDeletedInfo = DeletedRecord<HardwareInfo>;
using KeyboardDeletedInfo = DeletedRecord<KeyboardInfo>;
using LocalUserDeletedGroupInfo = DeletedRecord<LocalUserInfo::GroupSettings>;
using LocalUserDeletedUserInfo = DeletedRecord<LocalUserInfo::UserSettings>;
using MonitorDeletedInfo = DeletedRecord<MonitorInfo>;
using NetworkAdapterDeletedInfo = DeletedRecord<Common::NetworkAdapterInfo>;
using NetworkDriveDeletedInfo = DeletedRecord<NetworkDriveInfo>;
using PhysicalDiskDeletedInfo = DeletedRecord<Common::PhysicalDiskInfo>;
using PrinterDeletedInfo = DeletedRecord<PrinterInfo>;
using ProcessorDeletedInfo = DeletedRecord<Common::ProcessorInfo>;
using RunCommandDeletedInfo = DeletedRecord<RunCommandInfo>;
using ServiceDeletedInfo = DeletedRecord<ServiceInfo>;
using SharedResourceDeletedInfo = DeletedRecord<SharedResourceInfo>;
using SmbMemoryDeviceDeletedInfo = DeletedRecord<Common::SmbMemoryDeviceInfo>;
using SmbPortConnectorDeletedInfo = DeletedRecord<Common::SmbPortConnectorInfo>;
using SmbSystemSlotDeletedInfo = DeletedRecord<SmbSystemSlotInfo>;
using SoftwareDeletedInfo = DeletedRecord<Common::SoftwareRegisteredInfo>;
using VideoDeletedInfo = DeletedRecord<VideoInfo>;

}  // namespace Norvik::KOB
