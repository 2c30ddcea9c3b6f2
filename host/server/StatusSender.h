#pragma once

#include <cstddef>
#include <memory>
#include <mutex>

#include "host/server/Attempt.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"

namespace Norvik::Host {

/// Sends the waiting states of tasks in order. Safe on any thread.
class StatusSender {
 public:
  static constexpr std::size_t BATCH = 50;  ///< the largest number of states in a request

  StatusSender(std::shared_ptr<ServerSession> session, std::shared_ptr<StatusQueue> queue);

  /// Sends batches until no state waits or a batch fails. Drops the states that the server
  /// acknowledges. A batch that is too large for the server is halved for the next attempt.
  Attempt Send(HttpClient& client);

 private:
  Attempt SendBatch(HttpClient& client);

  const std::shared_ptr<ServerSession> session_;
  const std::shared_ptr<StatusQueue> queue_;
  std::mutex mutex_;
  std::size_t batch_ = BATCH;
};

}  // namespace Norvik::Host
