#include "platform/Accounts.h"

#include <pwd.h>
#include <string.h>
#include <unistd.h>
#include <utmpx.h>

#include <cerrno>
#include <vector>

namespace Norvik::Platform {

namespace {

/// Text of a fixed field of a login record, which a full field does not end with a NUL.
template <std::size_t size>
std::string FieldText(const char (&field)[size]) {
  return std::string(field, ::strnlen(field, size));
}

}  // namespace

std::optional<ChildAccount> AccountOf(const std::string& userName) {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  while (::getpwnam_r(userName.c_str(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    buffer.resize(buffer.size() * 2);
  }
  if (!found) return std::nullopt;
  return ChildAccount{entry.pw_uid, entry.pw_gid, entry.pw_name, entry.pw_dir, entry.pw_shell};
}

std::string UserOfSession(short session) {
  std::string user;
  ::setutxent();
  while (const utmpx* entry = ::getutxent()) {
    if (entry->ut_type != USER_PROCESS) continue;
    const bool atConsole = FieldText(entry->ut_line) == "console";
    const bool wanted =
        session == 0 ? atConsole || user.empty() : static_cast<short>(entry->ut_pid) == session;
    if (wanted) user = FieldText(entry->ut_user);
    if (wanted && (session != 0 || atConsole)) break;
  }
  ::endutxent();
  return user;
}

}  // namespace Norvik::Platform
