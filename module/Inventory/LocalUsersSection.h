#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/LocalUserInfo.h"

namespace Norvik::KOB {

/// All accounts and groups of the machine, including those of the system. Appends exactly one
/// record, which holds them all. Not thread-safe: reads the process-wide lists of accounts and
/// groups.
class LocalUsersSection final : public Common::ISection<std::list<LocalUserInfo>> {
 public:
  void GetInfo(std::list<LocalUserInfo>& result) override;

  void GetLocalUsers(LocalUserInfo& info);
  void GetLocalGroups(LocalUserInfo& info);
};

}  // namespace Norvik::KOB
