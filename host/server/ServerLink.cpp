#include "host/server/ServerLink.h"

#include <algorithm>
#include <boost/format.hpp>
#include <boost/optional.hpp>
#include <boost/property_tree/ptree.hpp>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <string>

#include "common/log/Logger.h"
#include "common/rest/PendingTasks.h"
#include "common/text/Text.h"
#include "host/data/DataFolder.h"
#include "host/server/AnswerBody.h"
#include "host/server/Attempt.h"

namespace Norvik::Host {

using namespace Common;

namespace {

bool IsForTasks(const IRestRequest& request) {
  return dynamic_cast<const PendingTasksRequest*>(&request) != nullptr;
}

/// The identifiers of all tasks in an answer; empty if one task has none, since it may be any of
/// those that are known.
boost::optional<std::set<std::string>> IdentifiersIn(const PendingTasksResponse& answer) {
  std::set<std::string> identifiers;
  for (const Schedule& task : answer.schedules) identifiers.insert(task.identifier);
  for (const RefusedTask& refused : answer.refused) identifiers.insert(refused.task.identifier);
  if (identifiers.count("") != 0) return boost::none;
  return identifiers;
}

/// The module reads the body, which may be any object.
void Record(ServerContact& contact, const std::string& kind, const HttpAnswer& answer) {
  contact.Record(kind, AttemptOf(answer, [](const auto&) { return true; }));
}

void Assign(const HttpAnswer& answer, IRestResponse& response) {
  if (!answer.IsSuccess()) throw std::runtime_error("it " + answer.Text());
  response.Assign(ParseAnswerBody(answer.body));
}

}  // namespace

ServerLink::ServerLink(const ServerOptions& options)
    : contact_(options.contact),
      statuses_(std::make_shared<StatusQueue>(options.dataFolder / STATUSES_FILE, options.clock)),
      answers_(std::make_shared<AnswerQueue>(options.dataFolder / ANSWERS_FOLDER, options.clock)),
      session_(std::make_shared<ServerSession>(options, stopped_)),
      delivery_(options, session_, statuses_, answers_, stopped_),
      thread_([this] { return delivery_.Round(); }, options.clock) {
  // Files that another process has left must not be replaced by those of this one.
  delivery_.NumberNewFiles();
}

ServerLink::~ServerLink() { Stop(); }

void ServerLink::Start() {
  started_ = true;
  thread_.Start();
}

void ServerLink::Stop() {
  stopped_ = true;
  thread_.Stop();
  contact_->Flush();
}

bool ServerLink::SendReports() {
  if (statuses_->IsEmpty() && answers_->IsEmpty()) return true;
  const auto client = session_->NewClient();
  boost::optional<std::chrono::seconds> retryAfter;
  return session_->Enrol(*client, retryAfter) && delivery_.SendReports(*client);
}

bool ServerLink::ProcessMessage(const IRestRequest& request, IRestResponse& response) {
  NORVIK_SCOPE();
  const bool forTasks = IsForTasks(request);
  // The server would send a task again whose state or answer it does not know yet.
  if (forTasks && !SendReports()) return false;
  try {
    const auto client = session_->NewClient();
    boost::optional<std::chrono::seconds> retryAfter;
    if (!session_->Enrol(*client, retryAfter)) return false;
    const std::string body = static_cast<json::JSON>(request).strUgly();
    const std::string resource = forTasks ? "tasks" : "messages";
    const HttpAnswer answer = session_->Post(*client, resource, body);
    Record(*contact_, resource, answer);
    Assign(answer, response);
    if (const auto* tasks = dynamic_cast<const PendingTasksResponse*>(&response)) List(*tasks);
    return true;
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The server %1% gave no answer to a question: %2%") %
                   session_->Origin() % OnOneLine(error.what()));
  }
  return false;
}

void ServerLink::List(const PendingTasksResponse& answer) {
  const auto identifiers = IdentifiersIn(answer);
  if (identifiers && onTasksListed_) onTasksListed_(*identifiers);
}

void ServerLink::ReportTaskStatus(const TaskResponseInfo& status) { ReportTaskStatuses({status}); }

void ServerLink::ReportTaskStatuses(const std::vector<TaskResponseInfo>& statuses) {
  std::vector<TaskResponseInfo> ofTasks;
  std::copy_if(statuses.begin(), statuses.end(), std::back_inserter(ofTasks),
               [](const TaskResponseInfo& status) {
                 return !status.requestId.empty() || !status.taskName.empty();
               });
  if (ofTasks.empty()) return;
  statuses_->Add(ofTasks);
  thread_.Wake();
}

void ServerLink::ReportTaskAnswer(const TaskAnswer& answer) {
  answers_->Add(answer);
  thread_.Wake();
}

void ServerLink::NewFileOnOutbox() {
  if (!started_) return;
  delivery_.NumberNewFiles();
  thread_.Wake();
}

}  // namespace Norvik::Host
