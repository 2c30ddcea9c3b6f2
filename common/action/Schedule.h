#pragma once

#include <string>

#include "common/action/ActionParameters.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

/// A task downloaded from the server: a code to run with parameters, once or periodically.
/// A module only hands it on to the action system.
struct Schedule {
  std::string identifier;
  unsigned int code = 0;
  ActionParameters parameters;
  ScheduleInfo when;
};

}  // namespace Norvik::Common
