#pragma once

#include <wx/string.h>

#include <cstdint>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// A memory slot and the module in it.
struct NORVIK_COMMON_API SmbMemoryDeviceInfo final : InventoryRecord<SmbMemoryDeviceInfo> {
  SmbMemoryDeviceInfo() = default;
  explicit SmbMemoryDeviceInfo(const ptree& node) { Read(node); }

  std::uint64_t sizeBytes = 0;  ///< 0: empty slot
  std::uint64_t speedMhz = 0;
  wxString bank;
  wxString formFactor;
  wxString manufacturer;
  wxString name;   ///< the slot's label on the board
  wxString model;  ///< part number
  wxString type;
  wxString serial;
  wxString assetTag;

  static constexpr auto Fields() {
    return FieldTable(
        Field("sizeBytes", &SmbMemoryDeviceInfo::sizeBytes),
        Field("speedMhz", &SmbMemoryDeviceInfo::speedMhz),
        Field("bank", &SmbMemoryDeviceInfo::bank),
        Field("formFactor", &SmbMemoryDeviceInfo::formFactor),
        Field("manufacturer", &SmbMemoryDeviceInfo::manufacturer),
        Field("name", &SmbMemoryDeviceInfo::name), Field("model", &SmbMemoryDeviceInfo::model),
        Field("type", &SmbMemoryDeviceInfo::type), Field("serial", &SmbMemoryDeviceInfo::serial),
        Field("assetTag", &SmbMemoryDeviceInfo::assetTag));
  }
  static constexpr auto Key() { return &SmbMemoryDeviceInfo::name; }
  static constexpr auto Kept() {
    return FieldTable(Field("manufacturer", &SmbMemoryDeviceInfo::manufacturer),
                      Field("model", &SmbMemoryDeviceInfo::model),
                      Field("name", &SmbMemoryDeviceInfo::name),
                      Field("serial", &SmbMemoryDeviceInfo::serial));
  }
};

}  // namespace Norvik::Common
