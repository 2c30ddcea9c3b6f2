#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Cli {

/// Records what would go to the server and to the users' processes, and sends nothing. Requests to
/// the server get no answer, as without a server. Safe on any thread.
class RehearsedCommunications : public Common::ICommunicationSystem,
                                public Common::ICommunicationIPC {
 public:
  struct Messages {
    std::vector<Common::TaskResponseInfo> statuses;
    std::vector<std::string> questions;  ///< requests to the server, each as JSON
    /// Receiver and message.
    std::vector<std::pair<unsigned long long, Common::IPCMessage>> toSessions;
    int outboxNotices = 0;  ///< calls of `NewFileOnOutbox`
  };

  /// By session identifier.
  using Sessions = std::map<unsigned long long, Common::IPCSessionData>;

  /// @param sessions the users that count as connected
  explicit RehearsedCommunications(Sessions sessions) : sessions_(std::move(sessions)) {}

  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void NewFileOnOutbox() override;

  /// Returns true, also for a session that is not among `sessions`.
  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  Sessions GetSessions() override { return sessions_; }

  /// A copy of all messages so far, each list in the order of the calls.
  Messages Kept() const;

 private:
  const Sessions sessions_;
  mutable std::mutex mutex_;
  Messages kept_;
};

}  // namespace Norvik::Cli
