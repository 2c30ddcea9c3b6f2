#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A printer queue.
struct PrinterInfo final : Common::InventoryRecord<PrinterInfo> {
  PrinterInfo() = default;
  explicit PrinterInfo(const ptree& node) { Read(node); }

  wxString name;
  wxString description;
  wxString port;
  wxString driverName;
  wxString manufacturer;

  static constexpr auto Fields() {
    return FieldTable(Field("name", &PrinterInfo::name, Conversion::Locale),
                      Field("description", &PrinterInfo::description, Conversion::Locale),
                      Field("port", &PrinterInfo::port, Conversion::Locale),
                      Field("driverName", &PrinterInfo::driverName, Conversion::Locale),
                      Field("manufacturer", &PrinterInfo::manufacturer, Conversion::Locale));
  }
  static constexpr auto Key() { return &PrinterInfo::name; }
  static constexpr auto Kept() {
    return FieldTable(Field("driverName", &PrinterInfo::driverName),
                      Field("manufacturer", &PrinterInfo::manufacturer),
                      Field("name", &PrinterInfo::name));
  }
};

}  // namespace Norvik::KOB
