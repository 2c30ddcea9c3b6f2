#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// Slots of a machine without an SMBIOS table. Deliberately adds nothing, not even a security chip.
class AlternativeBoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  void GetInfo(std::list<SmbSystemSlotInfo>& /*result*/) override {}
};

}  // namespace Norvik::KOB
