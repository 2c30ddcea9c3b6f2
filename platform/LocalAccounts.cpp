#include "platform/LocalAccounts.h"

#include <grp.h>
#include <pwd.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <utility>

namespace Norvik::Platform {

namespace {

std::shared_ptr<const MachineAccounts>& Recorded() {
  static std::shared_ptr<const MachineAccounts> recorded;
  return recorded;
}

/// Empty for null: some account databases leave a text out.
std::string TextOf(const char* text) { return text ? text : ""; }

}  // namespace

std::vector<LocalUser> LocalUsers() {
  if (const auto recorded = RecordedAccounts()) return recorded->users;
  std::vector<LocalUser> users;
  while (const passwd* const entry = ::getpwent()) {
    users.push_back({TextOf(entry->pw_name), TextOf(entry->pw_gecos)});
  }
  ::endpwent();
  return users;
}

std::vector<LocalGroup> LocalGroups() {
  if (const auto recorded = RecordedAccounts()) return recorded->groups;
  std::vector<LocalGroup> groups;
  while (const group* const entry = ::getgrent()) {
    LocalGroup& added = groups.emplace_back();
    added.name = TextOf(entry->gr_name);
    for (char** member = entry->gr_mem; member && *member; ++member) {
      added.members.emplace_back(*member);
    }
  }
  ::endgrent();
  return groups;
}

std::string HostName() {
  if (const auto recorded = RecordedAccounts()) return recorded->hostName;
  // The system's limit is 255 bytes or less; a name of that length comes without a NUL.
  char name[257] = {};
  return ::gethostname(name, sizeof(name) - 1) == 0 ? name : std::string();
}

std::string SystemName() {
  if (const auto recorded = RecordedAccounts()) return recorded->systemName;
  utsname system{};
  return ::uname(&system) < 0 ? std::string() : system.sysname;
}

std::shared_ptr<const MachineAccounts> RecordedAccounts() { return Recorded(); }

void SetRecordedAccounts(std::shared_ptr<const MachineAccounts> accounts) {
  Recorded() = std::move(accounts);
}

}  // namespace Norvik::Platform
