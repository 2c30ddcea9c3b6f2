#include "platform/Accounts.h"

#include <pwd.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <vector>

#include "platform/LoginRecords.h"

namespace Norvik::Platform {

namespace {

/// Most bytes of one entry of the account database, which may come from a server.
constexpr std::size_t MAX_ENTRY = 1 << 20;

}  // namespace

std::optional<ChildAccount> AccountOf(const std::string& userName) {
  std::vector<char> buffer(1024);
  passwd entry{};
  passwd* found = nullptr;
  while (::getpwnam_r(userName.c_str(), &entry, buffer.data(), buffer.size(), &found) == ERANGE) {
    if (buffer.size() >= MAX_ENTRY) return std::nullopt;
    buffer.resize(buffer.size() * 2);
  }
  if (!found) return std::nullopt;
  return ChildAccount{entry.pw_uid, entry.pw_gid, entry.pw_name, entry.pw_dir, entry.pw_shell};
}

std::string UserOfSession(short session) {
  std::string user;
  LoginRecords records;
  while (const utmpx* const entry = records.Next()) {
    if (entry->ut_type != USER_PROCESS) continue;
    const bool atConsole = LoginRecords::TextOf(entry->ut_line) == "console";
    const bool wanted =
        session == 0 ? atConsole || user.empty() : static_cast<short>(entry->ut_pid) == session;
    if (wanted) user = LoginRecords::TextOf(entry->ut_user);
    if (wanted && (session != 0 || atConsole)) break;
  }
  return user;
}

}  // namespace Norvik::Platform
