#pragma once

#include <list>
#include <memory>
#include <utility>

#include "common/identification/SmBios.h"
#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// Slots of the board, from the SMBIOS table.
class BoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  explicit BoardSlotsSection(std::weak_ptr<Common::SmBios> smBios) : smBios_(std::move(smBios)) {}
  void GetInfo(std::list<SmbSystemSlotInfo>& /*result*/) override {}  // Nothing is collected yet.

 private:
  std::weak_ptr<Common::SmBios> smBios_;
};

}  // namespace Norvik::KOB
