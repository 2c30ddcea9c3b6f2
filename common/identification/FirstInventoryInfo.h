#pragma once

#include <wx/string.h>

#include <vector>

#include "common/records/MemoryInfo.h"
#include "common/records/NetworkAdapterInfo.h"
#include "common/records/OperatingSystemInfo.h"
#include "common/records/PhysicalDiskInfo.h"
#include "common/records/ProcessorInfo.h"
#include "common/records/SetupInfo.h"

namespace Norvik::Common {

/// Facts of the machine that the host gathers for itself. A fact that it could not find is empty or
/// 0.
struct FirstInventoryInfo {
  MemoryInfo memory;
  SetupInfo setup;
  OperatingSystemInfo operatingSystem;
  wxString hostName;
  wxString domain;
  wxString operatingSystemType;  ///< a text of `OperatingSystemType::ToString`
  wxString architecture;
  wxString kernel;
  std::vector<NetworkAdapterInfo> networkAdapters;
  std::vector<PhysicalDiskInfo> physicalDisks;
  std::vector<ProcessorInfo> processors;
};

}  // namespace Norvik::Common
