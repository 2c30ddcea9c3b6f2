#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "common/log/Logger.h"
#include "module/Entities/RunCommandInfo.h"

namespace Norvik::KOB {

/// Commands that run at start or logon. This system has no such list: `GetInfo` logs a warning and
/// adds nothing.
class RunCommandsSection final : public Common::ISection<std::list<RunCommandInfo>> {
 public:
  void GetInfo(std::list<RunCommandInfo>& /*result*/) override {
    NORVIK_WARNING("Not implemented");
  }
};

}  // namespace Norvik::KOB
