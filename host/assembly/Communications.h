#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Host {

/// The agent's communications, as the module sees them: the connection to the server and those to
/// the other processes of the agent, while they exist. Without a server, documents stay in the
/// outbox and questions fail; without other processes, there are no sessions. States of tasks also
/// go to the log and to the progress listener. Safe on any thread.
class Communications : public Common::ICommunicationSystem, public Common::ICommunicationIPC {
 public:
  /// To be called before the module runs an action. Null: no server.
  void SetServer(std::shared_ptr<Common::ICommunicationSystem> server);
  void SetProcesses(std::shared_ptr<Common::ICommunicationIPC> processes);

  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  /// Several make one line of the log.
  void ReportTaskStatuses(const std::vector<Common::TaskResponseInfo>& statuses) override;
  void NewFileOnOutbox() override;

  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  std::map<unsigned long long, Common::IPCSessionData> GetSessions() override;

 private:
  std::shared_ptr<Common::ICommunicationSystem> Server();
  std::shared_ptr<Common::ICommunicationIPC> Processes();

  std::mutex mutex_;
  std::shared_ptr<Common::ICommunicationSystem> server_;
  std::shared_ptr<Common::ICommunicationIPC> processes_;
};

}  // namespace Norvik::Host
