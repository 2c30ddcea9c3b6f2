#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/MonitorInfo.h"

namespace Norvik::KOB {

/// Displays.
class MonitorsSection final : public Common::ISection<std::list<MonitorInfo>> {
 public:
  void GetInfo(std::list<MonitorInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
