#pragma once

#include <list>
#include <string>

#include "common/inventory/ISection.h"
#include "module/Entities/MonitorInfo.h"

namespace Norvik::KOB {

/// Displays: from the EDID blocks in the I/O registry or, if that holds none at all, from the
/// report of displays.
class MonitorsSection final : public Common::ISection<std::list<MonitorInfo>> {
 public:
  /// Raises `std::out_of_range` at an EDID line that is too short; the displays before it are in
  /// the list then.
  void GetInfo(std::list<MonitorInfo>& result) override;
};

/// Appends the display of each EDID block, one a line in hexadecimal digits. Raises as `GetInfo`.
void ReadEdidLines(const std::string& lines, std::list<MonitorInfo>& result);

}  // namespace Norvik::KOB
