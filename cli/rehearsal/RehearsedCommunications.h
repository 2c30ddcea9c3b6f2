#pragma once

#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Cli {

/// Keeps what would go to the server and to the users' processes, and sends nothing. Questions find
/// no answer, as without a server.
class RehearsedCommunications : public Common::ICommunicationSystem,
                                public Common::ICommunicationIPC {
 public:
  struct Messages {
    std::vector<Common::TaskResponseInfo> statuses;
    std::vector<std::string> questions;  ///< to the server, each as JSON
    std::vector<std::pair<unsigned long long, Common::IPCMessage>> toSessions;
    int outboxNotices = 0;  ///< how often the host is told of a new file
  };

  using Sessions = std::map<unsigned long long, Common::IPCSessionData>;

  /// @param sessions which users count as connected
  explicit RehearsedCommunications(Sessions sessions) : sessions_(std::move(sessions)) {}

  bool ProcessMessage(const Common::IRestRequest& request,
                      Common::IRestResponse& response) override;
  void ReportTaskStatus(const Common::TaskResponseInfo& status) override;
  void NewFileOnOutbox() override;

  bool Send(const Common::IPCMessage& message, unsigned long long session) override;
  Sessions GetSessions() override { return sessions_; }

  Messages Kept() const;

 private:
  const Sessions sessions_;
  mutable std::mutex mutex_;
  Messages kept_;
};

}  // namespace Norvik::Cli
