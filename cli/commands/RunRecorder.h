#pragma once

#include <string>

#include "cli/commands/RunResult.h"
#include "cli/commands/StatusRecorder.h"
#include "host/assembly/ListeningLogger.h"

namespace Norvik::Cli {

/// Collects what runs of one kind report, and the errors in the log. Safe on any thread.
class RunRecorder : public StatusRecorder {
 public:
  explicit RunRecorder(Common::RunKind kind) : kind_(kind) {}

  /// Adds a line of level 2 to the problems, and ignores all others.
  void See(const Host::LogLine& line);
  /// What was collected so far. `requestedIncremental` and `seconds` are left to the caller.
  RunResult Result() const;

  void KindDecided(const Common::RunInfo& run, bool incremental) override;
  void TotalInstead(const Common::RunInfo& run, const std::string& reason) override;
  void RequestRefused(Common::RunKind kind, const std::string& reason) override;
  void NothingToSend(const Common::RunInfo& run) override;
  void DocumentStepDone(const Common::RunInfo& run, const Common::DocumentStep& step) override;

 protected:
  bool Follows(const Common::RunInfo& run) const { return run.kind == kind_; }

 private:
  const Common::RunKind kind_;
  RunResult result_;
};

}  // namespace Norvik::Cli
