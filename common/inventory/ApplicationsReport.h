#pragma once

#include <string>
#include <vector>

#include "common/Api.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// The applications in the output of `system_profiler -xml SPApplicationsDataType`. Empty for any
/// other text, with a line in the log if it is no XML. Entries without a name are skipped.
NORVIK_COMMON_API std::vector<SoftwareRegisteredInfo> ReadApplicationsReport(
    const std::string& propertyList);

}  // namespace Norvik::Common
