#pragma once

#include <string>

namespace Norvik::Common {

/// A status of a programmed task, as the server gets it. The numbers are those of the server.
struct TaskResponseInfo {
  enum ResponseStatusTypes : unsigned int {
    TASK_FINISHED = 2,
    TASK_NOT_RUN = 3,  ///< refused before it began
    TASK_STARTED = 7,
    TASK_FAILED = 8,
  };

  ResponseStatusTypes status = TASK_STARTED;
  std::string message;  ///< the reason, for people; may be empty
  // From the parameters of the action; empty for an action that no task started.
  std::string taskName;
  std::string taskCreationDate;
  std::string taskTimeStamp;
  std::string requestId;
};

}  // namespace Norvik::Common
