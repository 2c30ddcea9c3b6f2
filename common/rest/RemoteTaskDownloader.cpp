#include "common/rest/RemoteTaskDownloader.h"

#include <boost/format.hpp>
#include <exception>
#include <utility>

#include "common/action/TaskOrigin.h"
#include "common/log/Logger.h"
#include "common/rest/PendingTasks.h"
#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

constexpr char NOT_FETCHED[] = "The pending tasks could not be fetched: %1%";

// One answer can hold 20,000 tasks.
constexpr std::size_t NAMED = 10;
constexpr std::size_t LONGEST_REASON = 200;  ///< in the log

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

void RemoteTaskDownloader::Refuse(const std::vector<RefusedTask>& tasks) {
  std::vector<TaskResponseInfo> statuses;
  for (std::size_t i = 0; i < tasks.size(); ++i) {
    const auto& [task, reason] = tasks[i];
    if (i < NAMED) {
      NORVIK_WARNING(boost::format("The server's task \"%1%\" is left out: %2%") %
                     OnOneLine(task.identifier) % OnOneLine(reason.substr(0, LONGEST_REASON)));
    }
    auto status = StatusOfTask(task.parameters, TaskResponseInfo::TASK_NOT_RUN, reason);
    if (!status.requestId.empty()) statuses.push_back(std::move(status));
  }
  if (tasks.size() > NAMED) {
    NORVIK_WARNING(boost::format("%1% more tasks of the same answer of the server are left out") %
                   std::to_string(tasks.size() - NAMED));
  }
  if (!statuses.empty()) communications_->ReportTaskStatuses(statuses);
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
    for (Schedule& task : response.schedules) {
      if (IsKnown(task.code)) {
        schedules.push_back(Completed(std::move(task)));
      } else {
        std::string reason = "no action has the code " + std::to_string(task.code);
        response.refused.push_back({std::move(task), std::move(reason)});
      }
    }
    Refuse(response.refused);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format(NOT_FETCHED) % error.what());
  }
  return schedules;
}

}  // namespace Norvik::Common
