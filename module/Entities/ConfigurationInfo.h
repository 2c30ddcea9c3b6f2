#pragma once

#include <wx/string.h>

#include <cstdint>

#include "common/records/InventoryRecord.h"

namespace Norvik::KOB {

/// Version and profile of the agent.
struct ConfigurationInfo final : Common::InventoryRecord<ConfigurationInfo> {
  ConfigurationInfo() = default;
  explicit ConfigurationInfo(const ptree& node) { Read(node); }

  std::uint16_t communicationsNumber = 0;  ///< of `CommunicationsInfo`; not in the document
  int profileId = 0;
  wxString communicationsText;  ///< of `CommunicationsInfo`; not in the document
  wxString agentVersion;

  static constexpr auto Fields() {
    return FieldTable(Field("profileId", &ConfigurationInfo::profileId),
                      Field("agentVersion", &ConfigurationInfo::agentVersion, Conversion::Locale));
  }
};

}  // namespace Norvik::KOB
