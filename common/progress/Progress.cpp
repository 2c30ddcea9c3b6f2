#include "common/progress/Progress.h"

#include <algorithm>
#include <boost/format.hpp>
#include <exception>
#include <mutex>
#include <utility>
#include <vector>

#include "common/log/Logger.h"

namespace Norvik::Common {

using std::chrono::steady_clock;

namespace {

/// The innermost run of each thread; null outside of runs.
thread_local const RunScope* current = nullptr;

RunInfo CurrentRun() { return current ? current->Info() : RunInfo(); }

RunInfo CurrentRunOfKind(RunKind kind) {
  if (current && current->Info().kind == kind) return current->Info();
  return {0, kind, nullptr};
}

struct Installed {
  struct Listener {
    std::shared_ptr<IProgressListener> object;
    bool hasThrown = false;
  };

  std::mutex mutex;
  /// The process's listener, which may be null, and the observers.
  std::vector<Listener> listeners{1};
};

Installed& TheInstalled() {
  static Installed installed;
  return installed;
}

std::vector<std::shared_ptr<IProgressListener>> AllListeners() {
  Installed& installed = TheInstalled();
  const std::lock_guard<std::mutex> lock(installed.mutex);
  std::vector<std::shared_ptr<IProgressListener>> all;
  for (const auto& listener : installed.listeners) {
    if (listener.object) all.push_back(listener.object);
  }
  return all;
}

bool IsFirstFailure(const std::shared_ptr<IProgressListener>& object) {
  Installed& installed = TheInstalled();
  const std::lock_guard<std::mutex> lock(installed.mutex);
  for (auto& listener : installed.listeners) {
    if (listener.object == object) return !std::exchange(listener.hasThrown, true);
  }
  return false;
}

/// Not at level 2: those lines are the faults of the run.
void LogFirstFailure(const std::shared_ptr<IProgressListener>& listener,
                     const char* reason) noexcept {
  try {
    if (!IsFirstFailure(listener)) return;
    NORVIK_WARNING(boost::format("The listener to the progress threw: %1%") % reason);
  } catch (const std::exception&) {  // no memory for the message: the run goes on without it
  }
}

template <class Call>
void Notify(const std::shared_ptr<IProgressListener>& listener, Call call) noexcept {
  try {
    call(*listener);
  } catch (const std::exception& error) {
    LogFirstFailure(listener, error.what());
  } catch (...) {
    LogFirstFailure(listener, "not a standard exception");
  }
}

template <class Call>
void Notify(Call call) noexcept {
  try {
    for (const auto& listener : AllListeners()) Notify(listener, call);
  } catch (const std::exception&) {  // no memory for the list
  }
}

std::uint64_t NextId() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

}  // namespace

IProgressListener::~IProgressListener() = default;

std::shared_ptr<IProgressListener> GetProgressListener() {
  Installed& installed = TheInstalled();
  const std::lock_guard<std::mutex> lock(installed.mutex);
  return installed.listeners.front().object;
}

void SetProgressListener(std::shared_ptr<IProgressListener> listener) {
  Installed& installed = TheInstalled();
  {
    const std::lock_guard<std::mutex> lock(installed.mutex);
    std::swap(installed.listeners.front().object, listener);
    installed.listeners.front().hasThrown = false;
  }
  // The former listener ends here, outside the lock.
}

ProgressObserverScope::ProgressObserverScope(std::shared_ptr<IProgressListener> observer)
    : observer_(std::move(observer)) {
  Installed& installed = TheInstalled();
  const std::lock_guard<std::mutex> lock(installed.mutex);
  installed.listeners.push_back({observer_});
}

ProgressObserverScope::~ProgressObserverScope() {
  Installed& installed = TheInstalled();
  const std::lock_guard<std::mutex> lock(installed.mutex);
  auto& listeners = installed.listeners;
  listeners.erase(std::find_if(listeners.begin() + 1, listeners.end(),
                               [&](const auto& known) { return known.object == observer_; }));
}

RunScope::RunScope(RunKind kind)
    : seen_(std::make_shared<SeenCounts>()),
      run_{NextId(), kind, seen_},
      outer_(std::exchange(current, this)) {
  Notify([this](IProgressListener& listener) { listener.RunBegun(run_); });
}

RunScope::~RunScope() {
  Notify([this](IProgressListener& listener) { listener.RunEnded(run_); });
  current = outer_;
}

void RunScope::DecideKind(bool incremental) const {
  Notify([&](IProgressListener& listener) { listener.KindDecided(run_, incremental); });
}

SectionScope::SectionScope(SectionKeys keys) : keys_(std::move(keys)), start_(steady_clock::now()) {
  Notify([this](IProgressListener& listener) { listener.SectionBegun(CurrentRun(), keys_); });
}

SectionScope::~SectionScope() {
  const auto taken = steady_clock::now() - start_;
  Notify([&](IProgressListener& listener) { listener.SectionEnded(CurrentRun(), keys_, taken); });
}

PhasesScope::~PhasesScope() { End(); }

void PhasesScope::Enter(RudStatus phase) {
  End();
  if (phase == RudStatusNone || phase == RudStatusFinished) return;
  phase_ = phase;
  start_ = steady_clock::now();
  Notify([&](IProgressListener& listener) { listener.PhaseBegun(CurrentRun(), phase); });
}

void PhasesScope::End() {
  if (!phase_) return;
  const auto taken = steady_clock::now() - start_;
  Notify([&](IProgressListener& listener) { listener.PhaseEnded(CurrentRun(), *phase_, taken); });
  phase_.reset();
}

SeenCounts& SeenByThisRun() {
  static SeenCounts ofNobody;
  return current ? current->Seen() : ofNobody;
}

void ReportTotalInstead(RunKind kind, const std::string& reason) {
  Notify(
      [&](IProgressListener& listener) { listener.TotalInstead(CurrentRunOfKind(kind), reason); });
}

void ReportRefusal(RunKind kind, const std::string& reason) {
  Notify([&](IProgressListener& listener) { listener.RequestRefused(kind, reason); });
}

void ReportNothingToSend() {
  Notify([](IProgressListener& listener) { listener.NothingToSend(CurrentRun()); });
}

void ReportRecords(const RecordCounts& records) {
  Notify([&](IProgressListener& listener) { listener.RecordsCounted(CurrentRun(), records); });
}

void ReportTool(const ToolRun& tool) {
  Notify([&](IProgressListener& listener) { listener.ToolEnded(CurrentRun(), tool); });
}

void ReportDocument(const DocumentStep& step) {
  Notify([&](IProgressListener& listener) { listener.DocumentStepDone(CurrentRun(), step); });
}

void ReportTask(const TaskResponseInfo& status) {
  Notify([&](IProgressListener& listener) { listener.TaskReported(status); });
}

}  // namespace Norvik::Common
