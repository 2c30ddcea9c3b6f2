#pragma once

#include <memory>
#include <utility>

#include "common/identification/SmBios.h"
#include "common/inventory/ISection.h"
#include "module/Entities/SmBiosInfo.h"

namespace Norvik::KOB {

/// Firmware, from the SMBIOS table.
class BiosSection final : public Common::ISection<SmBiosInfo> {
 public:
  explicit BiosSection(std::weak_ptr<Common::SmBios> smBios) : smBios_(std::move(smBios)) {}
  void GetInfo(SmBiosInfo& /*result*/) override {}  // Nothing is collected yet.

 private:
  std::weak_ptr<Common::SmBios> smBios_;
};

}  // namespace Norvik::KOB
