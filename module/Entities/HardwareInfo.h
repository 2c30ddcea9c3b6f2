#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A device and its driver.
struct HardwareInfo final : Common::InventoryRecord<HardwareInfo> {
  HardwareInfo() = default;
  explicit HardwareInfo(const ptree& node) { Read(node); }

  wxString pnpDeviceId;
  wxString type;
  wxString name;
  wxString manufacturer;
  wxString state;
  wxString driverError;

  static constexpr auto Fields() {
    return FieldTable(
        Field("pnpDeviceId", &HardwareInfo::pnpDeviceId), Field("type", &HardwareInfo::type),
        Field("name", &HardwareInfo::name), Field("manufacturer", &HardwareInfo::manufacturer),
        Field("state", &HardwareInfo::state), Field("driverError", &HardwareInfo::driverError));
  }
  static constexpr auto Key() { return &HardwareInfo::pnpDeviceId; }
  static constexpr auto Kept() {
    return FieldTable(
        Field("manufacturer", &HardwareInfo::manufacturer), Field("name", &HardwareInfo::name),
        Field("pnpDeviceId", &HardwareInfo::pnpDeviceId), Field("type", &HardwareInfo::type));
  }
};

}  // namespace Norvik::KOB
