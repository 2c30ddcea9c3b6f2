#include "cli/rehearsal/RehearsedCommunications.h"

namespace Norvik::Cli {

using namespace Common;

bool RehearsedCommunications::ProcessMessage(const IRestRequest& request, IRestResponse&) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kept_.questions.push_back(json::JSON(request).strUgly());
  return false;
}

void RehearsedCommunications::ReportTaskStatus(const TaskResponseInfo& status) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kept_.statuses.push_back(status);
}

void RehearsedCommunications::NewFileOnOutbox() {
  const std::lock_guard<std::mutex> lock(mutex_);
  ++kept_.outboxNotices;
}

bool RehearsedCommunications::Send(const IPCMessage& message, unsigned long long session) {
  const std::lock_guard<std::mutex> lock(mutex_);
  kept_.toSessions.emplace_back(session, message);
  return true;
}

RehearsedCommunications::Messages RehearsedCommunications::Kept() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return kept_;
}

}  // namespace Norvik::Cli
