#pragma once

#include <vector>

#include "common/Api.h"
#include "common/action/TaskResponseInfo.h"
#include "common/rest/RestMessages.h"

namespace Norvik::Common {

/// The connection to the management server. Any thread may call.
class NORVIK_COMMON_API ICommunicationSystem {
 public:
  virtual ~ICommunicationSystem();

  /// Sends a request, waits for the answer and fills the response. False if no server is
  /// configured, it could not be reached, or its answer could not be read: the response is then
  /// unchanged and the reason is logged.
  virtual bool ProcessMessage(const IRestRequest& request, IRestResponse& response) = 0;
  /// Queues a status of a task for the server and returns at once.
  virtual void ReportTaskStatus(const TaskResponseInfo& status) = 0;
  /// Notifies that a new file is in the outbox, and returns at once.
  virtual void NewFileOnOutbox() = 0;
  /// Queues statuses in their order, as one by one; a host may do it in one step.
  virtual void ReportTaskStatuses(const std::vector<TaskResponseInfo>& statuses);

 protected:
  ICommunicationSystem() = default;
  ICommunicationSystem(const ICommunicationSystem&) = default;
  ICommunicationSystem& operator=(const ICommunicationSystem&) = default;
};

}  // namespace Norvik::Common
