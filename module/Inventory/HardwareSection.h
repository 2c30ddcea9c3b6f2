#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/HardwareInfo.h"

namespace Norvik::KOB {

/// Where another system lists its device classes. Not used on this one.
inline constexpr char SYS_CLASSES_PATH[] = "/sys/class";

/// Devices of the first USB bus, without those connected through a hub. Leaves the file
/// "temp" in the working directory. If it cannot write that file, reads an existing one.
class HardwareSection final : public Common::ISection<std::list<HardwareInfo>> {
 public:
  void GetInfo(std::list<HardwareInfo>& result) override;
};

}  // namespace Norvik::KOB
