#pragma once

#include <wx/string.h>

#include <ctime>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A display.
struct MonitorInfo final : Common::InventoryRecord<MonitorInfo> {
  MonitorInfo() = default;
  explicit MonitorInfo(const ptree& node) { Read(node); }

  wxString manufacturer;
  wxString model;
  wxString name;
  wxString serial;
  std::time_t date = 0;  ///< of manufacture, in seconds since the epoch
  wxString revision;

  static constexpr auto Fields() {
    return FieldTable(Field("manufacturer", &MonitorInfo::manufacturer),
                      Field("model", &MonitorInfo::model), Field("name", &MonitorInfo::name),
                      Field("serial", &MonitorInfo::serial), Date("date", &MonitorInfo::date),
                      Field("revision", &MonitorInfo::revision));
  }
  /// Deliberately not the serial: the server counts two monitors of one model as one.
  static constexpr auto Key() { return &MonitorInfo::model; }
  static constexpr auto Kept() {
    return FieldTable(Field("manufacturer", &MonitorInfo::manufacturer),
                      Field("model", &MonitorInfo::model), Field("name", &MonitorInfo::name),
                      Field("serial", &MonitorInfo::serial));
  }
};

}  // namespace Norvik::KOB
