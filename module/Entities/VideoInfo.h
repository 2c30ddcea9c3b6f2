#pragma once

#include <wx/string.h>

#include <ctime>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// A video card.
struct VideoInfo final : Common::InventoryRecord<VideoInfo> {
  VideoInfo() = default;
  explicit VideoInfo(const ptree& node) { Read(node); }

  wxString driverName;
  wxString name;
  wxString chipset;
  wxString dac;
  unsigned long long size = 0;  ///< of the memory, in bytes
  wxString version;
  wxString versionBios;
  std::time_t date = 0;  ///< of the driver, in seconds since the epoch
  wxString manufacturer;

  static constexpr auto Fields() {
    return FieldTable(Field("driverName", &VideoInfo::driverName, Conversion::Locale),
                      Field("name", &VideoInfo::name, Conversion::Locale),
                      Field("chipset", &VideoInfo::chipset, Conversion::Locale),
                      Field("dac", &VideoInfo::dac, Conversion::Locale),
                      Field("size", &VideoInfo::size),
                      Field("version", &VideoInfo::version, Conversion::Locale),
                      Field("versionBios", &VideoInfo::versionBios, Conversion::Locale),
                      Date("date", &VideoInfo::date),
                      Field("manufacturer", &VideoInfo::manufacturer, Conversion::Locale));
  }
  static constexpr auto Key() { return &VideoInfo::name; }
  /// Deliberately the version under "driverName": the server expects it there.
  static constexpr auto Kept() {
    return FieldTable(Field("driverName", &VideoInfo::version),
                      Field("manufacturer", &VideoInfo::manufacturer),
                      Field("name", &VideoInfo::name));
  }
};

}  // namespace Norvik::KOB
