#include "host/server/Delivery.h"

#include <algorithm>
#include <boost/format.hpp>
#include <utility>

#include "common/files/SealingKeys.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/data/DataFolder.h"

namespace Norvik::Host {

namespace {

using Common::OnOneLine;

constexpr char STATUSES[] = "statuses";
constexpr char STATUSES_TEXT[] = "the states of tasks";
constexpr char ANSWERS[] = "answers";
constexpr char ANSWERS_TEXT[] = "the answers of tasks";

double SecondsOf(std::chrono::milliseconds time) {
  return std::chrono::duration<double>(time).count();
}

}  // namespace

Delivery::Delivery(const ServerOptions& options, std::shared_ptr<ServerSession> session,
                   std::shared_ptr<StatusQueue> queue, std::shared_ptr<AnswerQueue> answers,
                   const std::atomic<bool>& stopped)
    : options_(options),
      stopped_(stopped),
      session_(std::move(session)),
      queue_(std::move(queue)),
      answerQueue_(std::move(answers)),
      statuses_(session_, queue_),
      answers_(session_, answerQueue_),
      sender_(session_, options.dataFolder / KEY_FOLDER, options.history, stopped_),
      files_(options.outbox, options.extensions, options.clock),
      client_(session_->NewClient()),
      server_(options.limits, options.clock) {}

Delivery::TimePoint Delivery::Round() {
  files_.NumberNewFiles();
  // Before the server is asked: it may not answer.
  HasServerKey();
  const bool isAllowed = !stopped_ && server_.IsDue() && HasWork();
  if (isAllowed && Enrol() && DeliverStatuses() && DeliverAnswers() && DeliverFiles()) {
    server_.Succeeded();
  }
  if (stopped_) return TimePoint::max();
  const TimePoint next = NextTry();
  const bool waits = next != TimePoint::max();
  const auto now = options_.clock->Steady();
  options_.contact->SetNextTry(waits ? boost::make_optional(next - now) : boost::none);
  return next;
}

bool Delivery::HasWork() const {
  return options_.identity->Get().server != session_->Origin() || !queue_->IsEmpty() ||
         !answerQueue_->IsEmpty() || !files_.List().empty();
}

bool Delivery::Enrol() {
  boost::optional<std::chrono::seconds> retryAfter;
  if (session_->Enrol(*client_, retryAfter)) return true;
  server_.Failed(retryAfter);
  return false;
}

bool Delivery::DeliverStatuses() {
  if (queue_->IsEmpty() || IsHeldUp(STATUSES)) return true;
  return Record(STATUSES, STATUSES_TEXT, statuses_.Send(*client_));
}

bool Delivery::DeliverAnswers() {
  if (answerQueue_->IsEmpty() || IsHeldUp(ANSWERS)) return true;
  return Record(ANSWERS, ANSWERS_TEXT, answers_.Send(*client_));
}

/// Logs each change of the answer.
bool Delivery::HasServerKey() {
  const auto keys = options_.dataFolder / KEY_FOLDER;
  const std::string problem = Common::SealingKeys(keys).ServerKeyProblem();
  if (std::exchange(keyProblem_, problem) != problem) {
    if (problem.empty()) {
      NORVIK_INFORMATION("The server's key is there; documents are delivered");
    } else {
      NORVIK_WARNING(boost::format("No document is delivered to %1%, %2% wait: %3%") %
                     session_->Origin() % std::to_string(files_.List().size()) %
                     OnOneLine(problem));
    }
  }
  return problem.empty();
}

bool Delivery::DeliverFiles() {
  if (!HasServerKey()) return true;
  for (const OutboxFile& file : files_.List()) {
    if (IsHeldUp(file.extension)) continue;
    const std::string what = OnOneLine(file.path.filename().string());
    if (!Record(file.extension, what, sender_.Send(*client_, file))) return false;
  }
  return true;
}

bool Delivery::SendReports(HttpClient& client) {
  using Result = Attempt::Result;
  if (!queue_->IsEmpty() &&
      RecordReport(STATUSES, STATUSES_TEXT, statuses_.Send(client)) != Result::Acknowledged) {
    return false;
  }
  // What was refused must not be sent with each question: the next round knows its wait.
  if (answerQueue_->IsEmpty() || answers_.IsRefused()) return true;
  return RecordReport(ANSWERS, ANSWERS_TEXT, answers_.Send(client)) != Result::ServerFailed;
}

Attempt::Result Delivery::RecordReport(const char* kind, const char* what, const Attempt& attempt) {
  if (!stopped_) options_.contact->Record(kind, attempt);
  if (attempt.result != Attempt::Result::Acknowledged && !stopped_) {
    NORVIK_WARNING(boost::format("The server %1% has not acknowledged %2%: it %3%") %
                   session_->Origin() % what % attempt.reason);
  }
  return attempt.result;
}

/// Returns whether the round may continue. A stop of the agent is no failure of the server.
bool Delivery::Record(const std::string& kind, const std::string& what, const Attempt& attempt) {
  if (attempt.result == Attempt::Result::Acknowledged || !stopped_) {
    options_.contact->Record(kind, attempt);
  }
  if (attempt.result == Attempt::Result::Acknowledged) {
    NORVIK_DETAIL(boost::format("The server %1% has %2%") % session_->Origin() % what);
    refused_.erase(kind);
    return !stopped_;
  }
  if (stopped_) return false;
  const bool isRefused = attempt.result == Attempt::Result::Refused;
  Backoff& backoff =
      isRefused ? refused_.emplace(kind, Backoff(options_.limits, options_.clock)).first->second
                : server_;
  const auto wait = backoff.Failed(attempt.retryAfter);
  NORVIK_WARNING(boost::format("The server %1% has not acknowledged %2%: it %3%; next try in "
                               "%4$.1f s") %
                 session_->Origin() % what % attempt.reason % SecondsOf(wait));
  return isRefused;
}

bool Delivery::IsHeldUp(const std::string& kind) const {
  const auto found = refused_.find(kind);
  return found != refused_.end() && !found->second.IsDue();
}

Delivery::TimePoint Delivery::NextTry() const {
  if (!server_.IsDue()) return server_.Next();
  TimePoint next = TimePoint::max();
  for (const auto& [kind, backoff] : refused_) {
    if (!backoff.IsDue()) next = std::min(next, backoff.Next());
  }
  return next;
}

}  // namespace Norvik::Host
