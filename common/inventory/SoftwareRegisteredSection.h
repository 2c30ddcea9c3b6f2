#pragma once

#include <vector>

#include "common/Api.h"
#include "common/inventory/ISection.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// Collects the installed software: the applications that `system_profiler` reports on macOS, the
/// packages of the package database on Debian, nothing elsewhere. Files are found by `MachinePath`.
class NORVIK_COMMON_API SoftwareRegisteredSection
    : public ISection<std::vector<SoftwareRegisteredInfo>> {
 public:
  void GetInfo(std::vector<SoftwareRegisteredInfo>& result) override;
};

}  // namespace Norvik::Common
