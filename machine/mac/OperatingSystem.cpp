#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>

#include "common/commands/CommandRunner.h"
#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "machine/Gather.h"
#include "machine/NetworkText.h"
#include "machine/SystemFiles.h"
#include "machine/SystemText.h"
#include "machine/mac/Registry.h"
#include "machine/mac/Sysctl.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

wxString Kernel(const char* name) { return WxStringFromStdString(SysctlText(name)); }

wxString BootVolume() {
  struct statfs volume {};
  return ::statfs("/", &volume) == 0 ? WxStringFromStdString(volume.f_mntfromname) : wxString();
}

/// The setup assistant creates this file when it has finished.
boost::optional<long long> InstallDate() {
  struct stat state {};
  if (::stat("/var/db/.AppleSetupDone", &state) != 0) return boost::none;
  return static_cast<long long>(state.st_mtime) * 1000;
}

}  // namespace

OperatingSystemInfo GatherOperatingSystem() {
  OperatingSystemInfo info;
  info.family = WxStringFromStdString(OperatingSystemType::ToString(OperatingSystemType::MACOS));
  info.name = info.family;
  info.version = Kernel("kern.osproductversion");
  info.build = Kernel("kern.osversion");
  info.architecture = SysctlNumber("hw.optional.arm64") != 0 ? "arm64" : "x86_64";
  info.kernel = Kernel("kern.ostype");
  info.kernelVersion = Kernel("kern.osrelease");
  info.language = WxStringFromStdString(WithoutKeywords(
      trim_copy(CommandRunner::ExecCommand("/usr/bin/defaults read -g AppleLocale"))));
  info.timeZone = WxStringFromStdString(TimeZoneOf(SystemFiles()));
  info.bootVolume = BootVolume();
  info.serialNumber =
      WxStringFromStdString(RegistryProperty("IOPlatformExpertDevice", "IOPlatformSerialNumber"));
  info.installDate = InstallDate();
  return info;
}

std::string GatherDomain() {
  return ParseResolverFile(SystemFiles().Bytes("/etc/resolv.conf")).domain;
}

}  // namespace Norvik::Machine
