#pragma once

#include <string>
#include <vector>

#include "common/Api.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// The applications of a property list as `system_profiler -xml SPApplicationsDataType` prints it;
/// none for text that is no such list. Entries without a name are left out.
NORVIK_COMMON_API std::vector<SoftwareRegisteredInfo> ReadApplicationsReport(
    const std::string& propertyList);

}  // namespace Norvik::Common
