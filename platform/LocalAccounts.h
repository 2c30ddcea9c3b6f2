#pragma once

#include <utmpx.h>

#include <memory>
#include <string>
#include <vector>

namespace Norvik::Platform {

/// An account of the machine. Texts are the bytes of the account database; empty if it has none.
struct LocalUser {
  std::string name;
  std::string fullName;
};

struct LocalGroup {
  std::string name;
  std::vector<std::string> members;
};

/// All entries of the account database, in its order, those of the system included. Only one thread
/// at a time may read the database.
std::vector<LocalUser> LocalUsers();
std::vector<LocalGroup> LocalGroups();

/// The machine's host name; empty if it has none.
std::string HostName();

/// The name of the machine's kernel, as "Darwin"; empty if it is not known.
std::string SystemName();

/// What replaces the answers of the functions above and of `LoginRecords`.
struct MachineAccounts {
  std::string hostName;
  std::string systemName;
  std::vector<LocalUser> users;
  std::vector<LocalGroup> groups;
  std::vector<utmpx> logins;
};
/// Null unless a recorded machine is in force.
std::shared_ptr<const MachineAccounts> RecordedAccounts();
/// Null restores those of this machine. Call it while no other thread reads accounts.
void SetRecordedAccounts(std::shared_ptr<const MachineAccounts> accounts);

}  // namespace Norvik::Platform
