#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// Slots of the board of a machine without an SMBIOS table.
class AlternativeBoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  void GetInfo(std::list<SmbSystemSlotInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
