#pragma once

#include <wx/string.h>

#include <list>

#include "common/records/InventoryRecord.h"
#include "module/Entities/PermissionInfo.h"

namespace Norvik::KOB {

/// A folder or printer that the machine shares.
struct SharedResourceInfo final : Common::InventoryRecord<SharedResourceInfo> {
  SharedResourceInfo() = default;
  /// Throws `ptree_bad_path` if the node has no key "permissions"; null is an empty list.
  explicit SharedResourceInfo(const ptree& node) { Read(node); }

  wxString name;
  wxString type;
  wxString description;
  wxString path;
  std::list<PermissionInfo> permissions;

  static constexpr auto Fields() {
    return FieldTable(Field("name", &SharedResourceInfo::name, Conversion::Locale),
                      Field("type", &SharedResourceInfo::type, Conversion::Locale),
                      Field("description", &SharedResourceInfo::description, Conversion::Locale),
                      Field("path", &SharedResourceInfo::path, Conversion::Locale),
                      RequiredRecords("permissions", &SharedResourceInfo::permissions));
  }
  static constexpr auto Key() { return &SharedResourceInfo::name; }
  static constexpr auto Kept() { return FieldTable(Field("name", &SharedResourceInfo::name)); }
};

}  // namespace Norvik::KOB
