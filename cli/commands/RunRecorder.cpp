#include "cli/commands/RunRecorder.h"

namespace Norvik::Cli {

using namespace Common;

void RunRecorder::See(const Host::LogLine& line) {
  if (line.level != Logger::LEVEL_ERROR) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.problems.push_back(line.text);
}

RunResult RunRecorder::Result() const {
  const auto statuses = Statuses();
  const std::lock_guard<std::mutex> lock(mutex_);
  RunResult result = result_;
  result.statuses = statuses;
  return result;
}

void RunRecorder::KindDecided(const RunInfo& run, bool incremental) {
  if (!Follows(run)) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.kind = incremental ? "incremental" : "total";
}

void RunRecorder::TotalInstead(const RunInfo& run, const std::string& reason) {
  if (!Follows(run)) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.fallbackReason = reason;
  if (run.id != 0) result_.kind = "total";
}

void RunRecorder::RequestRefused(RunKind kind, const std::string& reason) {
  if (kind != kind_) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.refusal = reason;
}

void RunRecorder::NothingToSend(const RunInfo& run) {
  if (!Follows(run)) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.nothingToSend = true;
}

void RunRecorder::DocumentStepDone(const RunInfo& run, const DocumentStep& step) {
  if (!Follows(run) || step.kind == DocumentStep::WRITE) return;
  const std::lock_guard<std::mutex> lock(mutex_);
  result_.steps.push_back(step);
}

}  // namespace Norvik::Cli
