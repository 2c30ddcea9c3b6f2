#include "module/Inventory/LocalUsersSection.h"

#include <utility>

#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "platform/LocalAccounts.h"

namespace Norvik::KOB {

using Common::WxStringFromStdString;

void LocalUsersSection::GetInfo(std::list<LocalUserInfo>& result) {
  NORVIK_SCOPE();
  LocalUserInfo info;
  GetLocalUsers(info);
  GetLocalGroups(info);
  result.push_back(std::move(info));
}

void LocalUsersSection::GetLocalUsers(LocalUserInfo& info) {
  for (const Platform::LocalUser& entry : Platform::LocalUsers()) {
    LocalUserInfo::UserSettings user;
    user.userName = WxStringFromStdString(entry.name);
    user.description = WxStringFromStdString(entry.fullName);
    user.enabled = true;
    info.users.push_back(std::move(user));
  }
}

void LocalUsersSection::GetLocalGroups(LocalUserInfo& info) {
  for (const Platform::LocalGroup& entry : Platform::LocalGroups()) {
    LocalUserInfo::GroupSettings settings;
    settings.name = WxStringFromStdString(entry.name);
    for (const std::string& member : entry.members) {
      settings.users.push_back(WxStringFromStdString(member));
    }
    info.groups.push_back(std::move(settings));
  }
}

}  // namespace Norvik::KOB
