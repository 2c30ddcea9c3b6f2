#pragma once

#include <wx/string.h>

namespace Norvik::KOB {

/// What the system reports about itself. Not part of the document: most of `DeviceInfo` is taken
/// from it.
struct SystemInfo {
  long long collectionTime = 0;  ///< seconds since the epoch
  wxString hostName;
  wxString description;
  wxString domain;
  wxString workGroup;
  wxString other;  ///< not copied to `DeviceInfo`
  wxString userName;
  wxString server;
  unsigned char type = 0;  ///< `OperatingSystemType::Types` as a number
  bool virtualizationAvailable = false;
  wxString virtualizationLabel;
  wxString virtualizationKeyword;
};

}  // namespace Norvik::KOB
