#pragma once

#include <atomic>
#include <chrono>
#include <map>
#include <memory>
#include <string>

#include "host/server/AnswerQueue.h"
#include "host/server/AnswerSender.h"
#include "host/server/Backoff.h"
#include "host/server/FileSender.h"
#include "host/server/OutboxFiles.h"
#include "host/server/ServerSession.h"
#include "host/server/StatusQueue.h"
#include "host/server/StatusSender.h"

namespace Norvik::Host {

/// Sends to the server what waits for it: first the states of tasks, then their answers, then the
/// files of the outbox, oldest first; files only while there is a usable key of the server. Each
/// item is deleted only after the server has acknowledged it. A failure of the server ends the
/// round. An item that the server refuses delays only items of its kind, since they may build on
/// it. Each failure is logged in one line.
class Delivery {
 public:
  using TimePoint = std::chrono::steady_clock::time_point;

  /// @param stopped must outlive the delivery
  Delivery(const ServerOptions& options, std::shared_ptr<ServerSession> session,
           std::shared_ptr<StatusQueue> queue, std::shared_ptr<AnswerQueue> answers,
           const std::atomic<bool>& stopped);

  /// Delivers what may be delivered now. Must not run on two threads at once.
  /// @return when to call it again; `TimePoint::max()`: not before something new waits
  TimePoint Round();

  // The other methods are safe on any thread, also during a round.

  /// Gives new files of the outbox unique names, so that no later file replaces them.
  void NumberNewFiles() { files_.NumberNewFiles(); }
  /// Sends the waiting states and answers of tasks with the caller's client. A failure is logged.
  /// An answer that the server refuses waits, with those after it, for the next round.
  /// @return whether all others were sent
  bool SendReports(HttpClient& client);

 private:
  bool HasWork() const;
  bool Enrol();
  bool DeliverStatuses();
  bool DeliverAnswers();
  bool DeliverFiles();
  bool HasServerKey();
  bool Record(const std::string& kind, const std::string& what, const Attempt& attempt);
  Attempt::Result RecordReport(const char* kind, const char* what, const Attempt& attempt);
  bool IsHeldUp(const std::string& kind) const;
  TimePoint NextTry() const;

  const ServerOptions options_;
  const std::atomic<bool>& stopped_;
  const std::shared_ptr<ServerSession> session_;
  const std::shared_ptr<StatusQueue> queue_;
  const std::shared_ptr<AnswerQueue> answerQueue_;
  StatusSender statuses_;
  AnswerSender answers_;
  FileSender sender_;
  OutboxFiles files_;
  std::unique_ptr<HttpClient> client_;

  std::string keyProblem_;  ///< that was logged last
  Backoff server_;
  std::map<std::string, Backoff> refused_;  ///< by kind: extension of files, "statuses", "answers"
};

}  // namespace Norvik::Host
