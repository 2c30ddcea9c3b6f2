#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

#include "host/health/Checks.h"
#include "platform/FileDescriptor.h"
#include "platform/MachinePath.h"
#include "platform/Permissions.h"

namespace Norvik::Host {

namespace {

using Platform::Permission;

/// The system's own database of permissions. Only a program with Full Disk Access may open it.
constexpr char PROTECTED_FILE[] = "/Library/Application Support/com.apple.TCC/TCC.db";

/// The system judges a process by the program that started it. Only what the system itself has
/// started is judged as the service is.
bool IsJudgedAsService() { return ::getppid() == 1; }

constexpr char OF_ANOTHER[] =
    ", but by the rights of the program that started it; those of the service may differ";
constexpr char COMPARE[] =
    "look up the entry of norvik-agent in System Settings, Privacy & Security, or its profile";

Finding Judge(Permission permission, const std::string& what) {
  if (!IsMac()) return {Outcome::OK, "only macOS has such a permission"};
  const bool isOwn = IsJudgedAsService();
  const std::string whose = isOwn ? "" : OF_ANOTHER;
  const auto found = [&](Outcome own, const std::string& text) -> Finding {
    return {isOwn ? own : Outcome::UNKNOWN, text + whose, isOwn ? "" : COMPARE};
  };
  switch (permission) {
    case Permission::GRANTED:
      return found(Outcome::OK, "this process may " + what);
    case Permission::REFUSED:
      return found(Outcome::WARNING, "this process may not " + what);
    case Permission::NOT_ASKED:
      return found(Outcome::WARNING, "nobody has decided whether this process may " + what);
    case Permission::UNKNOWN:
      break;
  }
  return {Outcome::UNKNOWN, "this system does not tell whether a process may " + what};
}

}  // namespace

Finding FindFullDiskAccess(const Examined& /*examined*/) {
  const std::string file = Platform::MachinePath(PROTECTED_FILE);
  const Platform::FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  // The rights of the file itself say EACCES.
  const Permission permission = opened.IsOpen()  ? Permission::GRANTED
                                : errno == EPERM ? Permission::REFUSED
                                                 : Permission::UNKNOWN;
  return Judge(permission, "read protected files");
}

Finding FindLocationPermission(const Examined& /*examined*/) {
  return Judge(Platform::LocationPermission(), "know where the machine is");
}

Finding FindAppleEvents(const Examined& /*examined*/) {
  return Judge(Platform::AppleEventPermission(), "log out, restart and shut down by Apple Events");
}

}  // namespace Norvik::Host
