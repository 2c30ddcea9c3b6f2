#include "host/run/CommandRun.h"

#include <exception>
#include <utility>

#include "host/run/ProgressEvents.h"

namespace Norvik::Host {

using namespace Common;

namespace {

constexpr std::chrono::milliseconds BETWEEN_FRAMES(100);
/// An action may log without end; the log has all of it.
constexpr std::size_t MOST_LINES = 1000;

}  // namespace

CommandRun::CommandRun(std::shared_ptr<IpcService> processes,
                       std::shared_ptr<IpcConnection> connection)
    : processes_(std::move(processes)), connection_(std::move(connection)), linesLeft_(MOST_LINES) {
  connection_->Send(EncodeFrame(FrameKind::EVENTS, "[]"));
  thread_ = std::thread([this] { Work(); });
}

CommandRun::~CommandRun() {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
  thread_.join();
  try {
    if (SendEvents()) SendResult();
  } catch (const std::exception&) {  // no memory: the command sees the end of the connection
    connection_->Close();
  }
}

void CommandRun::Set(ActionResult result) {
  const std::lock_guard<std::mutex> lock(mutex_);
  result_ = std::make_unique<const ActionResult>(std::move(result));
}

void CommandRun::Happened(const OrderedJson& event) {
  const std::string text = JsonLine(event);
  const std::lock_guard<std::mutex> lock(mutex_);
  events_ += (events_.empty() ? "" : ",") + text;
}

void CommandRun::Logged(const LogLine& line) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (linesLeft_ == 0) return;
    --linesLeft_;
  }
  Happened(LoggedEvent(line));
}

void CommandRun::Counts(const RunInfo& run) {
  const std::lock_guard<std::mutex> lock(mutex_);
  if (run.kind == RunKind::FileInventory) counted_ = run;
}

void CommandRun::Work() {
  std::unique_lock<std::mutex> lock(mutex_);
  while (!changed_.wait_for(lock, BETWEEN_FRAMES, [this] { return ended_; })) {
    lock.unlock();
    const bool sent = SendEvents();
    lock.lock();
    if (!sent) return;
  }
}

/// `mutex_` must be held.
void CommandRun::AddCounts() {
  if (!counted_.seen) return;
  const std::string text = JsonLine(SeenEvent(counted_));
  if (std::exchange(lastCounts_, text) != text) events_ += (events_.empty() ? "" : ",") + text;
}

/// False if nobody reads the events any more.
bool CommandRun::SendEvents() {
  std::string events;
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    AddCounts();
    events.swap(events_);
  }
  return events.empty() || connection_->SendWhole(FrameKind::EVENTS, "[" + events + "]");
}

void CommandRun::SendResult() {
  const std::string text =
      result_ ? ToJsonText(*result_) : JsonLine({{"error", "the action did not begin"}});
  result_.reset();
  connection_->SendWhole(FrameKind::ANSWER, text);
}

}  // namespace Norvik::Host
