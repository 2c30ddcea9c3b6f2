#pragma once

#include <functional>
#include <map>
#include <mutex>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Host {

/// The agent's communications while it has no server and no users' processes: documents stay in
/// the outbox, questions to the server find no answer, and nobody is connected. States of tasks go
/// to the log and to a listener.
class Communications : public Common::ICommunicationSystem, public Common::ICommunicationIPC {
 public:
  /// Called on the thread that reports. Must not raise.
  using StatusListener = std::function<void(const Common::TaskResponseInfo&)>;

  void SetStatusListener(StatusListener listener);

  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void NewFileOnOutbox() override;

  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  std::map<unsigned long long, Common::IPCSessionData> GetSessions() override;

 private:
  std::mutex mutex_;
  StatusListener listener_;
};

}  // namespace Norvik::Host
