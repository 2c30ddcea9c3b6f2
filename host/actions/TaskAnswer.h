#pragma once

#include <string>

#include "host/actions/ActionResult.h"

namespace Norvik::Host {

/// How the action of a task of the server ended.
struct TaskAnswer {
  std::string taskIdentifier;
  std::string requestId;  ///< empty if the task has none
  unsigned int code = 0;
  ActionResult result;
};

}  // namespace Norvik::Host
