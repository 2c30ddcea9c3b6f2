#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/RunCommandInfo.h"

namespace Norvik::KOB {

/// Commands that run at start or logon. This system has no such list: the result stays as it is.
class RunCommandsSection final : public Common::ISection<std::list<RunCommandInfo>> {
 public:
  void GetInfo(std::list<RunCommandInfo>& result) override;
};

}  // namespace Norvik::KOB
