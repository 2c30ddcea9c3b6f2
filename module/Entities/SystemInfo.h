#pragma once

#include <wx/string.h>

namespace Norvik::KOB {

/// What the system tells of itself; the driver takes most of `DeviceInfo` from it. Never written.
struct SystemInfo {
  long long collectionTime = 0;  ///< seconds since the epoch
  wxString hostName;
  wxString description;
  wxString domain;
  wxString workGroup;
  wxString other;  ///< not taken over into `DeviceInfo`
  wxString userName;
  wxString server;
  unsigned char type = 0;  ///< number of an `OperatingSystemType`
  bool virtualizationAvailable = false;
  wxString virtualizationLabel;
  wxString virtualizationKeyword;
};

}  // namespace Norvik::KOB
