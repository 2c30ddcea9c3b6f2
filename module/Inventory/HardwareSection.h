#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/HardwareInfo.h"

namespace Norvik::KOB {

/// Where another system would list its classes of devices.
inline constexpr char SYS_CLASSES_PATH[] = "/sys/class";

/// Devices of the first USB bus, without those behind a hub. Leaves the file "temp" in the working
/// directory, and reads the one that is there if it cannot be written.
class HardwareSection final : public Common::ISection<std::list<HardwareInfo>> {
 public:
  void GetInfo(std::list<HardwareInfo>& result) override;
};

}  // namespace Norvik::KOB
