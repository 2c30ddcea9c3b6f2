#pragma once

#include <string>

namespace Norvik::Common {

/// State of a programmed task, as it goes to the server.
struct TaskResponseInfo {
  enum ResponseStatusTypes : unsigned int {
    TASK_FINISHED = 2,
    TASK_NOT_RUN = 3,
    TASK_STARTED = 7,
    TASK_FAILED = 8,
  };

  ResponseStatusTypes status = TASK_STARTED;
  std::string message;  ///< reason; empty if there is none
  // From the action's task parameters; empty for an action that no task started.
  std::string taskName;
  std::string taskCreationDate;
  std::string taskTimeStamp;
  std::string requestId;
};

}  // namespace Norvik::Common
