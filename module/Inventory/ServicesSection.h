#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/ServiceInfo.h"

namespace Norvik::KOB {

/// Daemons of the system.
class ServicesSection final : public Common::ISection<std::list<ServiceInfo>> {
 public:
  void GetInfo(std::list<ServiceInfo>& /*result*/) override {}  // Nothing is collected yet.
};

}  // namespace Norvik::KOB
