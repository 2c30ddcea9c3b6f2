#include "common/rest/RemoteTaskDownloader.h"

#include <boost/format.hpp>
#include <exception>
#include <utility>

#include "common/log/Logger.h"
#include "common/rest/PendingTasks.h"

namespace Norvik::Common {

namespace {

constexpr char NOT_FETCHED[] = "The pending tasks could not be fetched: %1%";

/// The task's own text of a parameter; empty if it has none.
std::string OwnText(const Schedule& task, const char* name) {
  const auto found = task.parameters.Values().find(name);
  const auto* const text =
      found == task.parameters.Values().end() ? nullptr : boost::get<std::string>(&found->second);
  return text ? *text : std::string();
}

}  // namespace

RemoteTaskDownloader::RemoteTaskDownloader(std::shared_ptr<ICommunicationSystem> communications,
                                           ProductCodes product, ActionFactory factory,
                                           std::string agentIdentifier,
                                           const ActionParameters* parameters)
    : communications_(std::move(communications)),
      product_(product),
      factory_(std::move(factory)),
      agentIdentifier_(std::move(agentIdentifier)),
      parameters_(parameters ? *parameters : ActionParameters()) {}

bool RemoteTaskDownloader::IsKnown(unsigned int code) const {
  // The contract offers no other question: only the action of an unknown code has no name.
  return !factory_ || !factory_(code, ActionParameters()).name.empty();
}

void RemoteTaskDownloader::Refuse(const Schedule& task, const std::string& reason) {
  NORVIK_WARNING(boost::format("The server's task \"%1%\" is left out: %2%") % task.identifier %
                 reason);
  TaskResponseInfo status;
  status.status = TaskResponseInfo::TASK_NOT_RUN;
  status.message = reason;
  status.requestId = OwnText(task, COMMON_PARAMETER_REQUEST_ID);
  status.taskName = OwnText(task, COMMON_PARAMETER_TASK_NAME);
  status.taskCreationDate = OwnText(task, COMMON_PARAMETER_TASK_CREATION_DATE);
  status.taskTimeStamp = OwnText(task, COMMON_PARAMETER_TASK_TIME_STAMP);
  if (!status.requestId.empty()) communications_->ReportTaskStatus(status);
}

Schedule RemoteTaskDownloader::Completed(Schedule task) const {
  for (const auto& [name, value] : parameters_.Values()) {
    if (!task.parameters.Exist(name)) task.parameters.Set(name, value);
  }
  return task;
}

std::vector<Schedule> RemoteTaskDownloader::GetSchedules() {
  std::vector<Schedule> schedules;
  try {
    PendingTasksRequest request;
    request.agentIdentifier = agentIdentifier_;
    request.product = product_;
    PendingTasksResponse response;
    // Failures of the connection are logged by the communication system.
    if (!communications_ || !communications_->ProcessMessage(request, response)) {
      NORVIK_DETAIL(boost::format(NOT_FETCHED) % "there was no answer");
      return {};
    }
    for (const RefusedTask& refused : response.refused) Refuse(refused.task, refused.reason);
    for (Schedule& task : response.schedules) {
      if (IsKnown(task.code)) {
        schedules.push_back(Completed(std::move(task)));
      } else {
        Refuse(task, "no action has the code " + std::to_string(task.code));
      }
    }
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(NOT_FETCHED) % error.what());
  }
  return schedules;
}

}  // namespace Norvik::Common
