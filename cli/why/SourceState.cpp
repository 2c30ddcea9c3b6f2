#include "cli/why/SourceState.h"

#include <unistd.h>

#include <cerrno>
#include <functional>
#include <map>
#include <system_error>

#include "common/commands/ToolOfLine.h"
#include "machine/Gather.h"
#include "machine/apple/Registry.h"
#include "platform/Location.h"
#include "platform/MachinePath.h"

namespace Norvik::Cli {

namespace {

struct Found {
  std::string path;
  std::string problem;
};

Found FindTool(const std::string& name) {
  const std::string path = Common::FindProgram(name);
  return {path, path.empty() ? "not found in PATH" : ""};
}

Found FindFile(const std::string& path) {
  if (::access(Platform::MachinePath(path).c_str(), R_OK) == 0) return {};
  if (errno == ENOENT) return {"", "missing"};
  return {"", "not readable: " + std::generic_category().message(errno)};
}

Found FindTable(const std::string&) {
  static const bool isValid = Machine::ReadSmBios()->IsValid();
  return {"", isValid ? "" : "no table, or not readable by this account"};
}

/// Each Mac has this device; whether it has the class that is asked shows only when it is asked.
Found FindRegistry(const std::string&) {
  constexpr char DEVICE[] = "IOPlatformExpertDevice";
  for (const char* const property : {"model", "manufacturer", "IOPlatformSerialNumber"}) {
    if (!Machine::Mac::RegistryProperty(DEVICE, property).empty()) return {};
  }
  return {"", "this system has none"};
}

Found FindLocation(const std::string&) {
  return {"", Platform::LocationService::IsEnabled() ? "" : "location services are off"};
}

}  // namespace

OrderedJson StateOf(const AskedSource& source) {
  static const std::map<std::string, std::function<Found(const std::string&)>> finders = {
      {"tool", FindTool},         {"file", FindFile},
      {"smbios", FindTable},      {"registry", FindRegistry},
      {"location", FindLocation}, {"call", [](const std::string&) { return Found(); }}};
  const Found found = finders.at(source.kind)(source.name);
  return {{"kind", source.kind},
          {"name", NameOf(source)},
          {"there", found.problem.empty()},
          {"path", found.path},
          {"problem", found.problem}};
}

std::string NameOf(const AskedSource& source) {
  if (source.kind == "smbios") return "SMBIOS";
  if (source.kind == "location") return "Core Location";
  return source.kind == "registry" ? "I/O registry: " + source.name : source.name;
}

OrderedJson PermissionOf(const std::string& needs) {
  OrderedJson has;
  if (needs == "root") has = ::geteuid() == 0;
  // Without the services nobody has the permission; with them only the system knows who does.
  if (needs == "Location" && !Platform::LocationService::IsEnabled()) has = false;
  return {{"needs", needs.empty() ? OrderedJson() : OrderedJson(needs)}, {"has", has}};
}

}  // namespace Norvik::Cli
