#pragma once

#include <wx/string.h>

#include <cstdint>

#include "common/records/InventoryRecord.h"

namespace Norvik::Common {

/// A connector of the board.
struct NORVIK_COMMON_API SmbPortConnectorInfo final : InventoryRecord<SmbPortConnectorInfo> {
  SmbPortConnectorInfo() = default;
  explicit SmbPortConnectorInfo(const ptree& node) { Read(node); }

  std::uint8_t typeCode = 0;  ///< port type of the SMBIOS standard
  wxString erd;               ///< external reference designator: the label on the case
  wxString externalConnector;
  wxString internalConnector;
  wxString name;  ///< internal reference designator
  wxString type;

  static constexpr auto Fields() {
    return FieldTable(Field("typeCode", &SmbPortConnectorInfo::typeCode),
                      Field("erd", &SmbPortConnectorInfo::erd),
                      Field("externalConnector", &SmbPortConnectorInfo::externalConnector),
                      Field("internalConnector", &SmbPortConnectorInfo::internalConnector),
                      Field("name", &SmbPortConnectorInfo::name),
                      Field("type", &SmbPortConnectorInfo::type));
  }
  static constexpr auto Key() {
    return std::make_tuple(&SmbPortConnectorInfo::name, &SmbPortConnectorInfo::erd);
  }
  static constexpr auto Kept() {
    return FieldTable(Field("erd", &SmbPortConnectorInfo::erd),
                      Field("name", &SmbPortConnectorInfo::name),
                      Field("type", &SmbPortConnectorInfo::type));
  }
};

}  // namespace Norvik::Common
