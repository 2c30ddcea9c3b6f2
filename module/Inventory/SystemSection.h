#pragma once

#include "common/inventory/ISection.h"
#include "module/Entities/SystemInfo.h"

namespace Norvik::KOB {

/// What the system tells of itself. What a tool prints is kept as it comes, line ends included; a
/// tool that is missing leaves its field empty.
class SystemSection final : public Common::ISection<SystemInfo> {
 public:
  void GetInfo(SystemInfo& result) override;
  /// The user of the newest record of logins; left as it is if there is none.
  void SetUserName(SystemInfo& result);
};

}  // namespace Norvik::KOB
