#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A keyboard.
struct KeyboardInfo final : Common::InventoryRecord<KeyboardInfo> {
  KeyboardInfo() = default;
  explicit KeyboardInfo(const ptree& node) { Read(node); }

  wxString pnpDeviceId;
  wxString type;
  wxString language;
  wxString country;
  wxString layout;
  wxString description;
  wxString manufacturer;

  static constexpr auto Fields() {
    return FieldTable(
        Field("pnpDeviceId", &KeyboardInfo::pnpDeviceId), Field("type", &KeyboardInfo::type),
        Field("language", &KeyboardInfo::language), Field("country", &KeyboardInfo::country),
        Field("layout", &KeyboardInfo::layout), Field("description", &KeyboardInfo::description),
        Field("manufacturer", &KeyboardInfo::manufacturer));
  }
  static constexpr auto Key() { return &KeyboardInfo::pnpDeviceId; }
  static constexpr auto Kept() {
    return FieldTable(Field("description", &KeyboardInfo::description),
                      Field("manufacturer", &KeyboardInfo::manufacturer),
                      Field("pnpDeviceId", &KeyboardInfo::pnpDeviceId));
  }
};

}  // namespace Norvik::KOB
