#pragma once

#include "common/inventory/ISection.h"
#include "module/Entities/SmBiosInfo.h"

namespace Norvik::KOB {

/// Firmware of a machine without an SMBIOS table, out of the I/O registry and the report of the
/// machine. A machine without such a registry is logged, and the record stays as it was.
class AlternativeBiosSection final : public Common::ISection<SmBiosInfo> {
 public:
  /// Raises `ptree_bad_path` if the report cannot be read, and `boost::bad_optional_access` if
  /// neither it nor the registry tells a version.
  void GetInfo(SmBiosInfo& result) override;
};

}  // namespace Norvik::KOB
