#pragma once

#include "common/inventory/ISection.h"
#include "module/Entities/SmBiosInfo.h"

namespace Norvik::KOB {

/// Firmware of a machine without an SMBIOS table.
class AlternativeBiosSection final : public Common::ISection<SmBiosInfo> {
 public:
  void GetInfo(SmBiosInfo& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
