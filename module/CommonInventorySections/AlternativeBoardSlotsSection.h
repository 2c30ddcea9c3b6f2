#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// A machine without an SMBIOS table tells of no slots: deliberately nothing is added, a security
/// chip neither.
class AlternativeBoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  void GetInfo(std::list<SmbSystemSlotInfo>& /*result*/) override {}
};

}  // namespace Norvik::KOB
