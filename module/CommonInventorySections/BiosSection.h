#pragma once

#include <memory>
#include <utility>

#include "common/identification/SmBios.h"
#include "common/inventory/ISection.h"
#include "module/Entities/SmBiosInfo.h"

namespace Norvik::KOB {

/// Firmware, from the first BIOS structure of the SMBIOS table that names a vendor, or from the
/// last one if none does. Throws `std::bad_weak_ptr` if the reader of the table no longer exists.
class BiosSection final : public Common::ISection<SmBiosInfo> {
 public:
  explicit BiosSection(std::weak_ptr<Common::SmBios> smBios) : smBios_(std::move(smBios)) {}
  void GetInfo(SmBiosInfo& result) override;

 private:
  std::weak_ptr<Common::SmBios> smBios_;
};

}  // namespace Norvik::KOB
