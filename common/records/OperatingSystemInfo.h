#pragma once

#include <wx/string.h>

#include <boost/optional.hpp>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// The operating system of the machine.
struct NORVIK_COMMON_API OperatingSystemInfo final : InventoryRecord<OperatingSystemInfo> {
  OperatingSystemInfo() = default;
  explicit OperatingSystemInfo(const ptree& node) { Read(node); }

  wxString name;
  wxString version;
  wxString build;
  wxString codeName;
  wxString architecture;
  wxString family;  ///< a text of `OperatingSystemType::ToString`
  wxString kernel;
  wxString kernelVersion;
  wxString language;
  wxString timeZone;
  wxString bootVolume;
  wxString registeredUser;
  wxString organization;
  wxString serialNumber;
  boost::optional<long long> installDate;  ///< milliseconds since the epoch

  static constexpr auto Fields() {
    return FieldTable(Field("name", &OperatingSystemInfo::name),
                      Field("version", &OperatingSystemInfo::version),
                      Field("build", &OperatingSystemInfo::build),
                      Field("codeName", &OperatingSystemInfo::codeName),
                      Field("architecture", &OperatingSystemInfo::architecture),
                      Field("family", &OperatingSystemInfo::family),
                      Field("kernel", &OperatingSystemInfo::kernel),
                      Field("kernelVersion", &OperatingSystemInfo::kernelVersion),
                      Field("language", &OperatingSystemInfo::language),
                      Field("timeZone", &OperatingSystemInfo::timeZone),
                      Field("bootVolume", &OperatingSystemInfo::bootVolume),
                      Field("registeredUser", &OperatingSystemInfo::registeredUser),
                      Field("organization", &OperatingSystemInfo::organization),
                      Field("serialNumber", &OperatingSystemInfo::serialNumber),
                      Field("installDate", &OperatingSystemInfo::installDate));
  }
};

}  // namespace Norvik::Common
