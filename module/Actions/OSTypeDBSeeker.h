#pragma once

#include "module/Actions/IOSTypeSeeker.h"

namespace Norvik::KOB {

/// Reads the type from the agent database; raises what the database raises.
class OSTypeDBSeeker final : public IOSTypeSeeker {
 public:
  int GetOSType() const override;
};

}  // namespace Norvik::KOB
