#pragma once

#include <wx/string.h>

#include <cstdint>
#include <list>
#include <string>

#include "common/records/InventoryRecord.h"
#include "common/records/SmbPortConnectorInfo.h"

namespace Norvik::Common {

/// The board.
struct SmbBaseboardInfo {
  std::string manufacturer;
  std::string product;
  std::string version;
  std::string serial;
  std::string assetTag;

  static constexpr auto Fields() {
    return FieldTable(
        Field("manufacturer", &SmbBaseboardInfo::manufacturer),
        Field("product", &SmbBaseboardInfo::product), Field("version", &SmbBaseboardInfo::version),
        Field("serial", &SmbBaseboardInfo::serial), Field("assetTag", &SmbBaseboardInfo::assetTag));
  }
};

/// The chassis. The codes are those of the SMBIOS standard.
struct SmbChassisInfo {
  std::uint32_t oemInformation = 0;
  std::uint8_t type = 0;
  std::uint8_t bootUpState = 0;
  std::uint8_t powerSupplyState = 0;
  std::uint8_t thermalState = 0;
  std::uint8_t securityStatus = 0;
  wxString assetTag;
  std::string manufacturer;
  wxString version;
  wxString serial;
  wxString typeName;
  std::string sku;

  static constexpr auto Fields() {
    return FieldTable(
        Field("oemInformation", &SmbChassisInfo::oemInformation),
        Field("type", &SmbChassisInfo::type), Field("bootUpState", &SmbChassisInfo::bootUpState),
        Field("powerSupplyState", &SmbChassisInfo::powerSupplyState),
        Field("thermalState", &SmbChassisInfo::thermalState),
        Field("securityStatus", &SmbChassisInfo::securityStatus),
        Field("assetTag", &SmbChassisInfo::assetTag),
        Field("manufacturer", &SmbChassisInfo::manufacturer),
        Field("version", &SmbChassisInfo::version), Field("serial", &SmbChassisInfo::serial),
        Field("typeName", &SmbChassisInfo::typeName), Field("sku", &SmbChassisInfo::sku));
  }
};

/// Product and identity of the machine, as its manufacturer states them.
struct SmbSystemInfo {
  std::string manufacturer;
  std::string product;
  std::string version;
  std::string family;
  std::string serial;
  std::string sku;
  wxString uuid;

  static constexpr auto Fields() {
    return FieldTable(
        Field("manufacturer", &SmbSystemInfo::manufacturer),
        Field("product", &SmbSystemInfo::product), Field("version", &SmbSystemInfo::version),
        Field("family", &SmbSystemInfo::family), Field("serial", &SmbSystemInfo::serial),
        Field("sku", &SmbSystemInfo::sku), Field("uuid", &SmbSystemInfo::uuid));
  }
};

/// Board, chassis and identity of the machine.
struct NORVIK_COMMON_API SetupInfo final : InventoryRecord<SetupInfo> {
  SetupInfo() = default;
  explicit SetupInfo(const ptree& node) { Read(node); }

  SmbBaseboardInfo baseboard;
  SmbChassisInfo chassis;
  SmbSystemInfo system;
  wxString modelIdentifier;  ///< the operating system's name of the model, as in "Macmini9,1"
  std::list<SmbPortConnectorInfo> portConnectors;

  static constexpr auto Fields() {
    return FieldTable(Record("baseboard", &SetupInfo::baseboard),
                      Record("chassis", &SetupInfo::chassis), Record("system", &SetupInfo::system),
                      Field("modelIdentifier", &SetupInfo::modelIdentifier),
                      Records("portConnectors", &SetupInfo::portConnectors));
  }
};

}  // namespace Norvik::Common
