#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "host/server/AnswerQueue.h"
#include "host/server/Attempt.h"
#include "host/server/ServerSession.h"

namespace Norvik::Host {

/// Sends the waiting answers of tasks in order. Safe on any thread.
class AnswerSender {
 public:
  AnswerSender(std::shared_ptr<ServerSession> session, std::shared_ptr<AnswerQueue> queue);

  /// Sends answers until none waits or one fails. Removes those that the server acknowledges.
  Attempt Send(HttpClient& client);
  /// Whether the server has refused the answer that was sent last.
  bool IsRefused() const { return isRefused_; }

 private:
  Attempt SendOne(HttpClient& client, const WaitingAnswer& answer);

  const std::shared_ptr<ServerSession> session_;
  const std::shared_ptr<AnswerQueue> queue_;
  std::mutex mutex_;
  std::atomic<bool> isRefused_{false};
};

}  // namespace Norvik::Host
