#pragma once

#include <vector>

#include "common/Api.h"
#include "common/inventory/ISection.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// Collects the installed software: on macOS the applications that `system_profiler` reports or, if
/// it reports none, those in their usual folders, with a warning in the log; on Debian the packages
/// of the package database; nothing elsewhere. Files are found by `MachinePath`.
class NORVIK_COMMON_API SoftwareRegisteredSection
    : public ISection<std::vector<SoftwareRegisteredInfo>> {
 public:
  void GetInfo(std::vector<SoftwareRegisteredInfo>& result) override;
};

}  // namespace Norvik::Common
