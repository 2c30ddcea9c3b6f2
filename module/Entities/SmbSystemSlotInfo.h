#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A slot of the board.
struct SmbSystemSlotInfo final : Common::InventoryRecord<SmbSystemSlotInfo> {
  SmbSystemSlotInfo() = default;
  explicit SmbSystemSlotInfo(const ptree& node) { Read(node); }

  int slotId = 0;
  wxString name;
  wxString type;
  wxString description;

  static constexpr auto Fields() {
    return FieldTable(Field("slotId", &SmbSystemSlotInfo::slotId),
                      Field("name", &SmbSystemSlotInfo::name, Conversion::Locale),
                      Field("type", &SmbSystemSlotInfo::type, Conversion::Locale),
                      Field("description", &SmbSystemSlotInfo::description, Conversion::Locale));
  }
  static constexpr auto Key() { return &SmbSystemSlotInfo::slotId; }
  static constexpr auto Kept() { return FieldTable(Field("slotId", &SmbSystemSlotInfo::slotId)); }
};

}  // namespace Norvik::KOB
