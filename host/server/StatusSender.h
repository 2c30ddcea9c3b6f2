#pragma once

#include <cstddef>
#include <memory>
#include <mutex>

#include "host/server/Attempt.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Host {

/// Sends the states of tasks in their order. Safe on any thread.
class StatusSender {
 public:
  static constexpr std::size_t BATCH = 50;

  StatusSender(std::shared_ptr<ServerSession> session, std::shared_ptr<StatusQueue> queue);

  /// Sends until none waits or a batch fails; drops what the server acknowledges.
  Attempt Send(HttpClient& client);

 private:
  Attempt SendBatch(HttpClient& client);

  const std::shared_ptr<ServerSession> session_;
  const std::shared_ptr<StatusQueue> queue_;
  std::mutex mutex_;
  std::size_t batch_ = BATCH;
};

}  // namespace Norvik::Host
