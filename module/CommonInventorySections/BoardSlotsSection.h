#pragma once

#include <wx/string.h>

#include <list>
#include <memory>
#include <utility>

#include "common/identification/SmBios.h"
#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// Slots of the board, from the SMBIOS table, followed by the security chip if the system reports
/// one.
class BoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  explicit BoardSlotsSection(std::weak_ptr<Common::SmBios> smBios) : smBios_(std::move(smBios)) {}
  /// Throws `std::bad_weak_ptr` if the reader of the table no longer exists, and what `GetTpmInfo`
  /// throws.
  void GetInfo(std::list<SmbSystemSlotInfo>& result) override;
  /// Appends the security chip with a `slotId` of 0. False without such a chip. Throws
  /// `ptree_bad_path` if the output of the system's tool is neither empty nor a report.
  bool GetTpmInfo(std::list<SmbSystemSlotInfo>& result);

  /// Text of a slot type; empty for an unknown code.
  wxString Type(unsigned char code) const;
  /// Text of a slot's usage; empty for an unknown code.
  wxString CurrentUsage(unsigned char code) const;

 private:
  std::weak_ptr<Common::SmBios> smBios_;
};

}  // namespace Norvik::KOB
