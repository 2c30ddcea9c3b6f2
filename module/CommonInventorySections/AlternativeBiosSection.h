#pragma once

#include "common/inventory/ISection.h"
#include "module/Entities/SmBiosInfo.h"

namespace Norvik::KOB {

/// Firmware of a machine without an SMBIOS table, from the I/O registry and the hardware report of
/// the system. If the registry has no entry for the machine, logs an error and leaves the record
/// unchanged.
class AlternativeBiosSection final : public Common::ISection<SmBiosInfo> {
 public:
  /// Throws `ptree_bad_path` if the report cannot be read, and `boost::bad_optional_access` if
  /// neither the report nor the registry holds a version.
  void GetInfo(SmBiosInfo& result) override;
};

}  // namespace Norvik::KOB
