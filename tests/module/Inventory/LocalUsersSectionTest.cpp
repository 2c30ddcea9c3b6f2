#include "module/Inventory/LocalUsersSection.h"

#include <gmock/gmock.h>
#include <pwd.h>
#include <unistd.h>

#include <algorithm>

#include "common/text/Text.h"

namespace Norvik::KOB {
namespace {

std::list<LocalUserInfo> Collect() {
  std::list<LocalUserInfo> result;
  LocalUsersSection().GetInfo(result);
  return result;
}

TEST(LocalUsersSection, GivesOneRecordWithAllAccounts) {
  const auto result = Collect();
  ASSERT_EQ(result.size(), 1U);
  EXPECT_FALSE(result.front().groups.empty());
  std::size_t accounts = 0;
  while (::getpwent()) ++accounts;
  ::endpwent();
  EXPECT_EQ(result.front().users.size(), accounts);
  EXPECT_EQ(Collect().front().users.size(), accounts);
}

TEST(LocalUsersSection, KnowsTheAccountThatRunsIt) {
  const passwd* const self = ::getpwuid(::geteuid());
  ASSERT_TRUE(self);
  // Of the library's one record, which the section's own questions overwrite.
  const wxString name = Common::WxStringFromStdString(self->pw_name);
  const wxString description = Common::WxStringFromStdString(self->pw_gecos);
  const auto result = Collect();
  const auto& users = result.front().users;
  const auto found = std::find_if(users.begin(), users.end(),
                                  [&](const auto& user) { return user.userName == name; });
  ASSERT_NE(found, users.end());
  EXPECT_EQ(found->description, description);
  EXPECT_TRUE(found->enabled);
  EXPECT_FALSE(found->locked || found->passwordChange || found->passwordRequired);
  EXPECT_EQ(found->fullUserName, "");
}

}  // namespace
}  // namespace Norvik::KOB
