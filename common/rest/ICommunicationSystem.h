#pragma once

#include "common/Api.h"
#include "common/action/TaskResponseInfo.h"
#include "common/rest/RestMessages.h"

namespace Norvik::Common {

/// The road to the management server. Safe on any thread.
class NORVIK_COMMON_API ICommunicationSystem {
 public:
  virtual ~ICommunicationSystem();

  /// Sends the request, waits for the answer and fills the response. False if there is no server,
  /// it could not be reached, or its answer is none; the response is then untouched.
  virtual bool ProcessMessage(const IRestRequest& request, IRestResponse& response) = 0;
  /// Takes on a task's state for the server and returns at once.
  virtual void ReportTaskStatus(const TaskResponseInfo& status) = 0;
  /// Tells that a new file waits in the outbox; returns at once.
  virtual void NewFileOnOutbox() = 0;

 protected:
  ICommunicationSystem() = default;
  ICommunicationSystem(const ICommunicationSystem&) = default;
  ICommunicationSystem& operator=(const ICommunicationSystem&) = default;
};

}  // namespace Norvik::Common
