#include <sys/utsname.h>

#include "common/text/OperatingSystemType.h"
#include "common/text/Text.h"
#include "machine/MountText.h"
#include "machine/NetworkText.h"
#include "machine/SystemText.h"
#include "machine/linux/GatherFromFiles.h"

namespace Norvik::Machine {

namespace {

using namespace Common;

std::string LanguageOf(const SystemFiles& files) {
  for (const char* path : {"/etc/locale.conf", "/etc/default/locale"}) {
    const std::string language = ValueOf(ParseEntries(files.Bytes(path), '='), "LANG");
    if (!language.empty()) return WithoutQuotes(language);
  }
  return {};
}

void ReadRelease(const SystemFiles& files, OperatingSystemInfo& info) {
  std::string text = files.Bytes("/etc/os-release");
  if (text.empty()) text = files.Bytes("/usr/lib/os-release");
  const auto entries = ParseEntries(text, '=');
  const auto value = [&](const char* key) {
    return WxStringFromStdString(WithoutQuotes(ValueOf(entries, key)));
  };
  info.name = value("NAME");
  info.version = value("VERSION_ID");
  info.codeName = value("VERSION_CODENAME");
  info.build = value("BUILD_ID");
  if (info.build.empty()) info.build = WxStringFromStdString(files.Text("/etc/debian_version"));
}

void ReadKernel(OperatingSystemInfo& info) {
  utsname system{};
  if (::uname(&system) != 0) return;
  info.architecture = WxStringFromStdString(system.machine);
  info.kernel = WxStringFromStdString(system.sysname);
  info.kernelVersion = WxStringFromStdString(system.release);
}

}  // namespace

OperatingSystemInfo GatherOperatingSystem(const SystemFiles& files) {
  OperatingSystemInfo info;
  ReadRelease(files, info);
  ReadKernel(info);
  info.family = WxStringFromStdString(OperatingSystemType::ToString(OperatingSystemType::LINUX));
  info.language = WxStringFromStdString(LanguageOf(files));
  info.timeZone = WxStringFromStdString(TimeZoneOf(files));
  for (const auto& mount : ParseMountInfo(files.Bytes("/proc/self/mountinfo"))) {
    if (mount.mountPoint == "/") info.bootVolume = WxStringFromStdString(mount.source);
  }
  return info;
}

std::string GatherDomain(const SystemFiles& files) {
  return ParseResolverFile(files.Bytes("/etc/resolv.conf")).domain;
}

}  // namespace Norvik::Machine
