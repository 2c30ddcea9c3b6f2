#pragma once

#include <wx/string.h>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A permission on a shared resource.
struct PermissionInfo {
  PermissionInfo() = default;
  explicit PermissionInfo(const boost::property_tree::ptree& node);

  bool operator==(const PermissionInfo& other) const;
  bool operator!=(const PermissionInfo& other) const { return !(*this == other); }

  wxString user;
  wxString type;
  wxString access;

  static constexpr auto Fields() {
    return FieldTable(Field("user", &PermissionInfo::user, Conversion::Locale),
                      Field("type", &PermissionInfo::type, Conversion::Locale),
                      Field("access", &PermissionInfo::access, Conversion::Locale));
  }
};

}  // namespace Norvik::KOB
