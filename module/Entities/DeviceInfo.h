#pragma once

#include <string>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// Identity of the machine. Never compared: an incremental document always holds the current one.
struct DeviceInfo final : Common::WrittenRecord<DeviceInfo> {
  DeviceInfo() = default;
  explicit DeviceInfo(const ptree& node) { Read(node); }

  std::string alias;        ///< asset identifier
  std::string guid;         ///< the agent's identifier
  long long assetDate = 0;  ///< time of collection, in milliseconds since the epoch
  std::string name;
  std::string description;
  std::string domain;
  std::string workGroup;
  std::string reserved;  ///< always empty; not in the document
  std::string userName;
  std::string server;
  unsigned char type = 0;  ///< `OperatingSystemType::Types` as a number

  static constexpr auto Fields() {
    return FieldTable(
        Field("alias", &DeviceInfo::alias), Field("guid", &DeviceInfo::guid),
        Field("assetDate", &DeviceInfo::assetDate), Field("name", &DeviceInfo::name),
        Field("description", &DeviceInfo::description), Field("domain", &DeviceInfo::domain),
        Field("workGroup", &DeviceInfo::workGroup), Field("userName", &DeviceInfo::userName),
        Field("server", &DeviceInfo::server), Field("type", &DeviceInfo::type));
  }
};

}  // namespace Norvik::KOB
