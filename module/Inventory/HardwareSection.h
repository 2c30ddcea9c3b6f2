#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/HardwareInfo.h"

namespace Norvik::KOB {

/// Devices on the USB buses.
class HardwareSection final : public Common::ISection<std::list<HardwareInfo>> {
 public:
  void GetInfo(std::list<HardwareInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
