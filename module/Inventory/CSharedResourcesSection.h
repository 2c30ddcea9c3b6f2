#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/SharedResourceInfo.h"

namespace Norvik::KOB {

/// Folders that the machine shares.
class CSharedResourcesSection final : public Common::ISection<std::list<SharedResourceInfo>> {
 public:
  void GetInfo(std::list<SharedResourceInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
