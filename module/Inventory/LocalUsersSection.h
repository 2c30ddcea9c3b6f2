#pragma once

#include <list>

#include "common/inventory/ISection.h"
#include "module/Entities/LocalUserInfo.h"

namespace Norvik::KOB {

/// The accounts and groups of the machine, those of the system included. Appends exactly one
/// record, which holds them all.
class LocalUsersSection final : public Common::ISection<std::list<LocalUserInfo>> {
 public:
  void GetInfo(std::list<LocalUserInfo>& result) override;

  void GetLocalUsers(LocalUserInfo& info);
  void GetLocalGroups(LocalUserInfo& info);
};

}  // namespace Norvik::KOB
