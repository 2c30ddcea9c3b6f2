#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/CdromInfo.h"

namespace Norvik::KOB {

/// Optical drives.
class CdromSection final : public Common::ISection<std::list<CdromInfo>> {
 public:
  void GetInfo(std::list<CdromInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
