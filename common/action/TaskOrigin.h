#pragma once

#include <string>

#include "common/Api.h"
#include "common/action/ActionParameters.h"
#include "common/action/TaskResponseInfo.h"

namespace Norvik::Common {

/// A status of the task that sent these parameters. Its name, dates and request are empty if no
/// task did.
NORVIK_COMMON_API TaskResponseInfo StatusOfTask(const ActionParameters& parameters,
                                                TaskResponseInfo::ResponseStatusTypes status,
                                                const std::string& message);

}  // namespace Norvik::Common
