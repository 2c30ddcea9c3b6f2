#pragma once

#include <wx/string.h>

#include <ctime>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// The firmware.
struct SmBiosInfo final : Common::InventoryRecord<SmBiosInfo> {
  SmBiosInfo() = default;
  explicit SmBiosInfo(const ptree& node) { Read(node); }

  wxString version;
  std::time_t date = 0;  ///< of release, in seconds since the epoch
  wxString manufacturer;
  int romSize = 0;

  static constexpr auto Fields() {
    return FieldTable(Field("version", &SmBiosInfo::version, Conversion::Locale),
                      Date("date", &SmBiosInfo::date),
                      Field("manufacturer", &SmBiosInfo::manufacturer, Conversion::Locale),
                      Field("romSize", &SmBiosInfo::romSize));
  }
};

}  // namespace Norvik::KOB
