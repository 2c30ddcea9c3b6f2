#include "cli/commands/FilesRecorder.h"

#include <utility>

namespace Norvik::Cli {

using namespace Common;

FilesRecorder::FilesRecorder(OnPhase onPhase)
    : RunRecorder(RunKind::FileInventory), onPhase_(std::move(onPhase)) {}

std::map<RudStatus, double> FilesRecorder::Phases() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return phases_;
}

FilesCounts FilesRecorder::Counts() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return counts_;
}

std::uint64_t FilesRecorder::Folders() const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return seen_ ? seen_->folders.load() : 0;
}

void FilesRecorder::RunBegun(const RunInfo& run) {
  if (!Follows(run)) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  seen_ = run.seen;
}

void FilesRecorder::PhaseBegun(const RunInfo& run, RudStatus phase) { onPhase_(phase, run.seen); }

void FilesRecorder::PhaseEnded(const RunInfo& run, RudStatus phase, Duration taken) {
  {
    const std::lock_guard<std::mutex> lock(mutex_);
    phases_[phase] += std::chrono::duration<double>(taken).count();
  }
  onPhase_(RudStatusFinished, run.seen);
}

void FilesRecorder::DocumentStepDone(const RunInfo& run, const DocumentStep& step) {
  RunRecorder::DocumentStepDone(run, step);
  if (!Follows(run) || step.kind != DocumentStep::WRITE) return;
  // Counted here, although the run waits for it, because the next steps remove the document.
  const FilesCounts counts = step.files ? *step.files : CountFiles(step.target);
  const std::lock_guard<std::mutex> lock(mutex_);
  counts_ = counts;
}

}  // namespace Norvik::Cli
