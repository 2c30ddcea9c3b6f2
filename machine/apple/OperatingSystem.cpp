#include "common/commands/CommandRunner.h"
#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "machine/NetworkText.h"
#include "machine/SystemFiles.h"
#include "machine/SystemText.h"
#include "machine/apple/GatherFromMac.h"
#include "machine/apple/Registry.h"
#include "machine/apple/Sysctl.h"
#include "platform/MachineObserver.h"
#include "platform/Volumes.h"

namespace Norvik::Machine::Mac {

namespace {

using namespace Common;
using Platform::Asked;
using Platform::Observe;

wxString Kernel(const char* name) { return WxStringFromStdString(SysctlText(name)); }

/// The setup assistant creates this file when it has finished.
boost::optional<long long> InstallDate() {
  static constexpr char FILE[] = "/var/db/.AppleSetupDone";
  const auto seconds = Platform::ModificationTime(FILE);
  if (seconds) Observe(Asked::MODIFICATION, FILE, std::to_string(*seconds));
  return boost::make_optional(seconds.has_value(), seconds.value_or(0) * 1000);
}

wxString BootVolume() {
  const std::string device = Platform::DeviceMountedAt("/");
  if (!device.empty()) Observe(Asked::DEVICE, "/", device);
  return WxStringFromStdString(device);
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
  info.language = WxStringFromStdString(
      WithoutKeywords(trim_copy(CommandRunner::ExecCommand("defaults read -g AppleLocale"))));
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

}  // namespace Norvik::Machine::Mac
