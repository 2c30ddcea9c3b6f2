#pragma once

#include <wx/string.h>

#include <list>
#include <set>

#include "common/records/InventoryRecord.h"
#include "common/records/LogicalDiskInfo.h"

namespace Norvik::KOB {

/// An optical drive.
struct CdromInfo final : Common::InventoryRecord<CdromInfo> {
  CdromInfo() = default;
  explicit CdromInfo(const ptree& node) { Read(node); }

  wxString busType;
  wxString manufacturer;
  wxString mediaType;
  wxString model;
  wxString pnpDeviceId;
  wxString serial;
  std::list<Common::LogicalDiskInfo> logicalDisks;
  std::set<wxString> features;

  static constexpr auto Fields() {
    return FieldTable(Field("busType", &CdromInfo::busType, Conversion::Locale),
                      Field("manufacturer", &CdromInfo::manufacturer, Conversion::Locale),
                      Field("mediaType", &CdromInfo::mediaType, Conversion::Locale),
                      Field("model", &CdromInfo::model, Conversion::Locale),
                      Field("pnpDeviceId", &CdromInfo::pnpDeviceId, Conversion::Locale),
                      Field("serial", &CdromInfo::serial, Conversion::Locale),
                      Records("logicalDisk", &CdromInfo::logicalDisks),
                      Texts("features", &CdromInfo::features, Conversion::Locale));
  }
  static constexpr auto Key() { return &CdromInfo::pnpDeviceId; }
  static constexpr auto Kept() {
    return FieldTable(Field("manufacturer", &CdromInfo::manufacturer),
                      Field("mediaType", &CdromInfo::mediaType), Field("model", &CdromInfo::model),
                      Field("pnpDeviceId", &CdromInfo::pnpDeviceId),
                      Field("serial", &CdromInfo::serial));
  }
};

}  // namespace Norvik::KOB
