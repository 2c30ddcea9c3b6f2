#pragma once

#include <list>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/MonitorInfo.h"

namespace Norvik::KOB {

/// Displays, from the EDID blocks in the I/O registry or, if that holds none, from the report of
/// displays.
class MonitorsSection final : public Common::ISection<std::list<MonitorInfo>> {
 public:
  /// Throws `std::out_of_range` for an EDID line that is too short; the displays before it are
  /// already in the list.
  void GetInfo(std::list<MonitorInfo>& result) override;
};

/// Appends the display of each EDID block; one block per line, in hexadecimal digits. Throws what
/// `GetInfo` throws.
void ReadEdidLines(const std::string& lines, std::list<MonitorInfo>& result);

}  // namespace Norvik::KOB
