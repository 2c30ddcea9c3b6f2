#include "platform/compat/Recording.h"

#include <algorithm>
#include <string>

#include "platform/RecordedMachine.h"
#include "platform/compat/RecordedJson.h"

namespace Norvik::Platform {

namespace {

using nlohmann::json;

RecordedProcess ProcessFrom(const json& node) {
  RecordedProcess process;
  const json& pid = MemberOf(node, "pid");
  if (pid.is_number_integer()) process.pid = pid.get<int>();
  process.name = TextAt(node, "name");
  process.path = TextAt(node, "path");
  if (MemberOf(node, "footprint").is_number_unsigned()) {
    process.footprint = WholeNumberAt(node, "footprint");
  }
  return process;
}

RecordedFix FixFrom(const json& node) {
  RecordedFix fix;
  constexpr double DAY = 86400.0;
  const double seconds = std::min(std::max(NumberAt(node, "afterSeconds"), 0.0), DAY);
  fix.after = std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
  fix.fix = {NumberAt(node, "latitude"), NumberAt(node, "longitude"), NumberAt(node, "altitude"),
             NumberAt(node, "speed")};
  return fix;
}

LocalGroup GroupFrom(const json& node) {
  LocalGroup group{TextAt(node, "name"), {}};
  for (const json& member : MemberOf(node, "members")) {
    if (member.is_string()) group.members.push_back(member.get<std::string>());
  }
  return group;
}

template <std::size_t size>
void CopyText(const json& node, const char* key, char (&field)[size]) {
  TextAt(node, key).copy(field, size);
}

utmpx LoginFrom(const json& node) {
  utmpx login{};
  login.ut_type = static_cast<short>(WholeNumberAt(node, "type"));
  login.ut_pid = static_cast<pid_t>(WholeNumberAt(node, "pid"));
  login.ut_tv.tv_sec = static_cast<decltype(login.ut_tv.tv_sec)>(NumberAt(node, "time"));
  CopyText(node, "user", login.ut_user);
  CopyText(node, "line", login.ut_line);
  CopyText(node, "host", login.ut_host);
  return login;
}

}  // namespace

std::optional<std::vector<RecordedProcess>> RecordedProcesses() {
  if (!IsMachineRecorded()) return {};
  std::vector<RecordedProcess> processes;
  ForEachObject(RecordedJson("processes.json"),
                [&](const json& node) { processes.push_back(ProcessFrom(node)); });
  return processes;
}

RecordedLocation ReadRecordedLocation() {
  RecordedLocation location;
  const json root = RecordedJson("location.json");
  location.enabled = MemberOf(root, "enabled") == true;
  ForEachObject(MemberOf(root, "fixes"),
                [&](const json& node) { location.fixes.push_back(FixFrom(node)); });
  return location;
}

MachineAccounts ReadRecordedAccounts() {
  MachineAccounts accounts;
  const json root = RecordedJson("accounts.json");
  ForEachObject(MemberOf(root, "users"), [&](const json& node) {
    accounts.users.push_back({TextAt(node, "name"), TextAt(node, "fullName")});
  });
  ForEachObject(MemberOf(root, "groups"),
                [&](const json& node) { accounts.groups.push_back(GroupFrom(node)); });
  ForEachObject(MemberOf(root, "logins"),
                [&](const json& node) { accounts.logins.push_back(LoginFrom(node)); });
  const json kernel = RecordedJson("sysctl.json");
  accounts.systemName = TextAt(kernel, "kern.ostype");
  accounts.hostName = TextAt(kernel, "kern.hostname");
  // The name of a Mac that has none. Documents are named after it.
  if (accounts.hostName.empty()) accounts.hostName = "localhost";
  return accounts;
}

}  // namespace Norvik::Platform
