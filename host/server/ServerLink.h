#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "common/rest/ICommunicationSystem.h"
#include "common/rest/PendingTasks.h"
#include "host/server/AnswerQueue.h"
#include "host/server/Delivery.h"
#include "host/server/PacedThread.h"
#include "host/server/ServerOptions.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Host {

/// The connection to the management server over HTTPS, as docs/server-protocol.md describes it.
/// At most one per data folder, in the service. Safe on any thread.
///
/// Questions are sent on the caller's thread, also before `Start`. States of tasks wait in a file
/// of the data folder, their answers in a folder; between `Start` and `Stop` they and the files of
/// the outbox are delivered by a thread that sleeps while there is nothing to do.
class ServerLink : public Common::ICommunicationSystem {
 public:
  /// Gets the identifiers of all tasks in an answer.
  using TasksListed = std::function<void(const std::set<std::string>& identifiers)>;

  /// Sends nothing. Throws a subclass of `std::exception` if the waiting states or answers cannot
  /// be read.
  explicit ServerLink(const ServerOptions& options);
  ServerLink(const ServerLink&) = delete;
  ServerLink& operator=(const ServerLink&) = delete;
  ~ServerLink() override;

  /// To be called before questions are sent. The function is called with each complete answer to a
  /// request for tasks, before `ProcessMessage` returns; what it throws makes the question fail.
  void OnTasksListed(TasksListed listener) { onTasksListed_ = std::move(listener); }
  /// Starts the delivery, including what already waits.
  void Start();
  /// How the requests to the server went.
  ContactState Contact() const { return contact_->State(); }
  /// Ends the delivery and every pending question without waiting for the server. Items that are
  /// not acknowledged stay. Later questions fail. Final.
  void Stop();
  /// Sends the waiting states and answers on this thread, for a process that never starts the
  /// delivery. False if some still wait, other than answers that the server refuses.
  bool SendReports();

  /// Sends a question and waits for the answer. False after a failure, which is logged in one line.
  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  // Both ignore a state that belongs to no task of the server.
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void ReportTaskStatuses(const std::vector<Common::TaskResponseInfo>& statuses) override;
  void NewFileOnOutbox() override;
  /// Queues an answer for the server. It is on the disk when this returns. Throws nothing.
  void ReportTaskAnswer(const TaskAnswer& answer);

 private:
  void List(const Common::PendingTasksResponse& answer);

  TasksListed onTasksListed_;
  std::atomic<bool> started_{false};
  std::atomic<bool> stopped_{false};
  const std::shared_ptr<ServerContact> contact_;
  const std::shared_ptr<StatusQueue> statuses_;
  const std::shared_ptr<AnswerQueue> answers_;
  const std::shared_ptr<ServerSession> session_;
  Delivery delivery_;
  PacedThread thread_;
};

}  // namespace Norvik::Host
