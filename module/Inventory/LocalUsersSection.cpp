#include "module/Inventory/LocalUsersSection.h"

#include <grp.h>
#include <pwd.h>

#include <utility>

#include "common/log/Logger.h"
#include "common/text/Text.h"

namespace Norvik::KOB {

namespace {

/// Empty for null: some account databases leave a text out.
wxString TextOf(const char* text) {
  return text ? Common::WxStringFromStdString(text) : wxString();
}

}  // namespace

void LocalUsersSection::GetInfo(std::list<LocalUserInfo>& result) {
  NORVIK_SCOPE();
  LocalUserInfo info;
  GetLocalUsers(info);
  GetLocalGroups(info);
  result.push_back(std::move(info));
}

void LocalUsersSection::GetLocalUsers(LocalUserInfo& info) {
  while (const passwd* const entry = ::getpwent()) {
    LocalUserInfo::UserSettings user;
    user.userName = TextOf(entry->pw_name);
    user.description = TextOf(entry->pw_gecos);
    user.enabled = true;
    info.users.push_back(std::move(user));
  }
  ::endpwent();
}

void LocalUsersSection::GetLocalGroups(LocalUserInfo& info) {
  while (const group* const entry = ::getgrent()) {
    LocalUserInfo::GroupSettings settings;
    settings.name = TextOf(entry->gr_name);
    for (char** member = entry->gr_mem; member && *member; ++member) {
      settings.users.push_back(TextOf(*member));
    }
    info.groups.push_back(std::move(settings));
  }
  ::endgrent();
}

}  // namespace Norvik::KOB
