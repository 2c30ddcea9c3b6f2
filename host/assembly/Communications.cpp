#include "host/assembly/Communications.h"

#include <boost/format.hpp>
#include <utility>

#include "common/log/Logger.h"
#include "common/progress/Progress.h"

namespace Norvik::Host {

using namespace Common;

void Communications::SetServer(std::shared_ptr<ICommunicationSystem> server) {
  const std::lock_guard<std::mutex> lock(mutex_);
  server_ = std::move(server);
}

void Communications::SetProcesses(std::shared_ptr<ICommunicationIPC> processes) {
  const std::lock_guard<std::mutex> lock(mutex_);
  processes_ = std::move(processes);
}

std::shared_ptr<ICommunicationSystem> Communications::Server() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return server_;
}

std::shared_ptr<ICommunicationIPC> Communications::Processes() {
  const std::lock_guard<std::mutex> lock(mutex_);
  return processes_;
}

bool Communications::ProcessMessage(const IRestRequest& request, IRestResponse& response) {
  if (const auto server = Server()) return server->ProcessMessage(request, response);
  NORVIK_DETAIL("No server is configured; the message is not sent");
  return false;
}

void Communications::ReportTaskStatus(const TaskResponseInfo& status) {
  NORVIK_DETAIL(boost::format("Task \"%1%\" has the status %2% %3%") % status.taskName %
                static_cast<unsigned int>(status.status) % status.message);
  if (const auto server = Server()) server->ReportTaskStatus(status);
  ReportTask(status);
}

void Communications::ReportTaskStatuses(const std::vector<TaskResponseInfo>& statuses) {
  if (statuses.size() == 1) return ReportTaskStatus(statuses.front());
  NORVIK_DETAIL(boost::format("%1% tasks have a new status") % std::to_string(statuses.size()));
  if (const auto server = Server()) server->ReportTaskStatuses(statuses);
  for (const TaskResponseInfo& status : statuses) ReportTask(status);
}

void Communications::NewFileOnOutbox() {
  if (const auto server = Server()) return server->NewFileOnOutbox();
  NORVIK_DETAIL("A new file waits in the outbox; there is no server to send it to");
}

bool Communications::Send(const IPCMessage& message, unsigned long long session) {
  if (const auto processes = Processes()) return processes->Send(message, session);
  NORVIK_DETAIL(boost::format("Message %1% finds no session %2%") % std::to_string(message.code) %
                std::to_string(session));
  return false;
}

std::map<unsigned long long, IPCSessionData> Communications::GetSessions() {
  if (const auto processes = Processes()) return processes->GetSessions();
  return {};
}

}  // namespace Norvik::Host
