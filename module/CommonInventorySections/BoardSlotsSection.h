#pragma once

#include <wx/string.h>

#include <list>
#include <memory>
#include <utility>

#include "common/identification/SmBios.h"
#include "common/inventory/ISection.h"
#include "module/Entities/SmbSystemSlotInfo.h"

namespace Norvik::KOB {

/// Slots of the board, from the SMBIOS table, and behind them the security chip, if the system
/// tells of one.
class BoardSlotsSection final : public Common::ISection<std::list<SmbSystemSlotInfo>> {
 public:
  explicit BoardSlotsSection(std::weak_ptr<Common::SmBios> smBios) : smBios_(std::move(smBios)) {}
  /// Raises `std::bad_weak_ptr` if the reader of the table has gone, and what `GetTpmInfo` raises.
  void GetInfo(std::list<SmbSystemSlotInfo>& result) override;
  /// Appends the security chip, its `slotId` 0; false if there is none. Raises `ptree_bad_path` if
  /// the system's answer is neither empty nor a report.
  bool GetTpmInfo(std::list<SmbSystemSlotInfo>& result);

  /// Text of a type of slot; empty for a code that is not known.
  wxString Type(unsigned char code) const;
  /// Text of a slot's use; empty for a code that is not known.
  wxString CurrentUsage(unsigned char code) const;

 private:
  std::weak_ptr<Common::SmBios> smBios_;
};

}  // namespace Norvik::KOB
