#pragma once

#include <string>
#include <vector>

#include "receiver/database/Session.h"

namespace Norvik::Receiver {

struct NewTask {
  long long code = 0;
  std::string name;
  std::string parameters = "[]";  ///< JSON, as the protocol has it
  long long period = 0;           ///< in seconds; 0: once
  long long next = 0;
};

/// Gives an agent a task and returns its identifier.
std::string AddTask(Session& session, const std::string& agent, const NewTask& task);
/// Whether the agent has a task of this code that has not ended.
bool HasTask(Session& session, const std::string& agent, long long code);

/// What reports the end of a task.
enum class TaskEnd {
  Status,  ///< a final status
  Answer,  ///< its answer: there is no status
  None,    ///< neither, or only after a failure
};
TaskEnd EndOf(long long code);
/// Whether an action loses data or ends work on the machine.
bool IsDestructive(long long code);

}  // namespace Norvik::Receiver
