#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/filesystem/operations.hpp>
#include <cstdlib>
#include <set>

#include "host/health/Checks.h"
#include "host/health/HealthReport.h"
#include "platform/MachinePath.h"

namespace Norvik::Host {

namespace {

namespace fs = boost::filesystem;

/// What collectors need, and the keys that are empty without it.
struct Need {
  const char* name;
  const char* keys;
};

/// docs/collectors.md says more of each.
constexpr Need TOOLS[] = {
    {"defaults", "device, keyboard, os"},
    {"diskutil", "cdrom, disk"},
    {"dscl", "sharedResources"},
    {"ioreg", "bios, displays"},
    {"ipconfig", "networkAdapter"},
    {"netstat", "networkAdapter"},
    {"networksetup", "networkAdapter"},
    {"scutil", "device"},
    {"sysctl", "processorSlot"},
    {"system_profiler",
     "bios, boards, displays, drivers, keyboard, software, unitMappings, videoCards"},
};

constexpr Need FILES_OF_A_MAC[] = {
    {"/etc/resolv.conf", "networkAdapter"},
    {"/Library/LaunchDaemons", "service"},
    {"/System/Library/LaunchDaemons", "service"},
};
constexpr Need FILES_OF_LINUX[] = {
    {"/etc/resolv.conf", "networkAdapter"},
    {"/proc/cpuinfo", "processorSlot"},
    {"/sys/block", "disk"},
    {"/sys/firmware/dmi/tables/DMI", "bios, boards, memorySlot, portConnectors, setup"},
};
/// Where there is no printer there is no such file.
constexpr Need PRINTERS = {"/etc/cups/printers.conf", "printer"};

/// Collectors have tools write these, so none may be in the way.
constexpr Need FIXED_FILES[] = {
    {"/tmp/diskInfo.plist", "cdrom"},
    {"/tmp/shareList", "sharedResources"},
    {"/tmp/propertyShare", "sharedResources"},
};

bool IsInPath(const std::string& program) {
  const char* const path = std::getenv("PATH");
  std::vector<std::string> folders;
  boost::split(folders, path ? path : "", boost::is_any_of(":"));
  return std::any_of(folders.begin(), folders.end(), [&](const std::string& folder) {
    const std::string file = (folder.empty() ? "." : folder) + "/" + program;
    return ::access(file.c_str(), X_OK) == 0;
  });
}

/// Names of needs, and all keys of them once, in order.
class NeedList {
 public:
  void Add(const Need& need) {
    names_ += (names_.empty() ? "" : ", ") + std::string(need.name);
    for (const std::string& key : SeparateKeys(need.keys)) keys_.insert(key);
  }
  bool IsEmpty() const { return names_.empty(); }
  const std::string& Names() const { return names_; }
  std::string Keys() const {
    std::string text;
    for (const std::string& key : keys_) text += (text.empty() ? "" : ", ") + key;
    return text;
  }

 private:
  std::string names_;
  std::set<std::string> keys_;
};

bool IsInTheWay(const std::string& file) {
  struct stat status {};
  if (::lstat(file.c_str(), &status) != 0) return false;
  // The folder is sticky: only root removes files of others.
  return S_ISDIR(status.st_mode) || (::geteuid() != 0 && status.st_uid != ::geteuid());
}

}  // namespace

Finding FindTools(const Examined& /*examined*/) {
  NeedList missing;
  for (const Need& tool : TOOLS) {
    if (!IsInPath(tool.name)) missing.Add(tool);
  }
  if (missing.IsEmpty()) return {Outcome::OK, "all are there"};
  if (!IsMac()) {
    return {Outcome::OK, "not needed: the sections that need them are of a Mac"};
  }
  return {Outcome::WARNING, "missing: " + missing.Names(), "", missing.Keys()};
}

Finding FindMachineFiles(const Examined& /*examined*/) {
  NeedList missing;
  NeedList hidden;
  const auto look = [&](const Need& file, bool mustExist) {
    const Presence presence = ReadablePresenceOf(Platform::MachinePath(file.name));
    if (presence == Presence::HIDDEN) hidden.Add(file);
    if (presence == Presence::MISSING && mustExist) missing.Add(file);
  };
  if (IsMac()) {
    for (const Need& file : FILES_OF_A_MAC) look(file, true);
  } else {
    for (const Need& file : FILES_OF_LINUX) look(file, true);
  }
  look(PRINTERS, false);
  if (!missing.IsEmpty()) {
    return {Outcome::INFORMATION, "missing: " + missing.Names(),
            "nothing, if this machine has none of what they describe", missing.Keys()};
  }
  if (hidden.IsEmpty()) return {Outcome::OK, "all are readable"};
  Finding finding = UnreadableFinding(hidden.Names());
  finding.keys = hidden.Keys();
  return finding;
}

Finding FindFixedFiles(const Examined& /*examined*/) {
  NeedList inTheWay;
  for (const Need& file : FIXED_FILES) {
    if (IsInTheWay(file.name)) inTheWay.Add(file);
  }
  if (!inTheWay.IsEmpty()) {
    return {Outcome::WARNING, "cannot be replaced: " + inTheWay.Names(), "", inTheWay.Keys()};
  }
  if (::access("/tmp", W_OK | X_OK) == 0) return {Outcome::OK, "/tmp can be written"};
  return {Outcome::WARNING, "this user cannot write to /tmp"};
}

}  // namespace Norvik::Host
