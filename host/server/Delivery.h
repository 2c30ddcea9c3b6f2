#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "host/server/Backoff.h"
#include "host/server/FileSender.h"
#include "host/server/OutboxFiles.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"
#include "host/server/StatusSender.h"

namespace Norvik::Host {

/// Brings to the server what waits for it: first the states of tasks, then the files of the outbox,
/// the oldest first. Nothing is deleted before the server has acknowledged just that. A failure of
/// the server ends the round; what the server refuses, and what is of the same kind and may build
/// on it, waits alone. Each failure is logged with one line.
class Delivery {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// @param stopped must outlive the delivery
  Delivery(const ServerOptions& options, std::shared_ptr<ServerSession> session,
           std::shared_ptr<StatusQueue> queue, const std::atomic<bool>& stopped);

  /// Delivers what may be delivered now. Not for two threads at once.
  /// @return when there is more to do; `TimePoint::max()`: not before something new comes
  TimePoint Round();

  // The rest is safe on any thread, beside a round too.

  /// Gives new files of the outbox names that no later one takes.
  void TakeNewFiles() { files_.Number(); }
  /// Sends the states of tasks that wait, on a client of the caller. A failure is logged.
  /// @return none waits
  bool SendStatuses(HttpClient& client);

 private:
  bool HasWork() const;
  bool Enrol();
  bool DeliverStatuses();
  bool DeliverFiles();
  bool Record(const std::string& kind, const std::string& what, const Attempt& attempt);
  bool IsHeldUp(const std::string& kind) const;
  TimePoint NextTry() const;

  const ServerOptions options_;
  const std::atomic<bool>& stopped_;
  const std::shared_ptr<ServerSession> session_;
  const std::shared_ptr<StatusQueue> queue_;
  StatusSender statuses_;
  FileSender sender_;
  OutboxFiles files_;
  std::unique_ptr<HttpClient> client_;

  Backoff server_;
  std::map<std::string, Backoff> refused_;  ///< by kind: the extension of files, or "statuses"
};

}  // namespace Norvik::Host
