#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A service that the system runs in the background.
struct ServiceInfo final : Common::InventoryRecord<ServiceInfo> {
  ServiceInfo() = default;
  explicit ServiceInfo(const ptree& node) { Read(node); }

  wxString name;
  wxString displayName;
  wxString command;
  wxString startupMode;
  wxString state;
  wxString description;

  static constexpr auto Fields() {
    return FieldTable(Field("name", &ServiceInfo::name, Conversion::Locale),
                      Field("displayName", &ServiceInfo::displayName, Conversion::Locale),
                      Field("command", &ServiceInfo::command, Conversion::Locale),
                      Field("startupMode", &ServiceInfo::startupMode, Conversion::Locale),
                      Field("state", &ServiceInfo::state, Conversion::Locale),
                      Field("description", &ServiceInfo::description, Conversion::Locale));
  }
  static constexpr auto Key() { return &ServiceInfo::name; }
  static constexpr auto Kept() {
    return FieldTable(Field("displayName", &ServiceInfo::displayName),
                      Field("name", &ServiceInfo::name));
  }
};

}  // namespace Norvik::KOB
