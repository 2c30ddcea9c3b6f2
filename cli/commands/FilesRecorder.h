#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "cli/commands/RunRecorder.h"
#include "common/files/FilesCounts.h"

namespace Norvik::Cli {

/// Collects what a file inventory reports. Safe on any thread.
class FilesRecorder : public RunRecorder {
 public:
  using Seen = std::shared_ptr<const Common::SeenCounts>;
  /// Called on the thread of the inventory: when a phase begins, and with `RudStatusFinished` when
  /// it ends.
  using OnPhase = std::function<void(Common::RudStatus phase, const Seen& seen)>;

  explicit FilesRecorder(OnPhase onPhase);

  /// Seconds spent in each phase.
  std::map<Common::RudStatus, double> Phases() const;
  /// Files in the document; zeros until it is written.
  Common::FilesCounts Counts() const;
  /// Number of folders opened so far.
  std::uint64_t Folders() const;

  void RunBegun(const Common::RunInfo& run) override;
  void PhaseBegun(const Common::RunInfo& run, Common::RudStatus phase) override;
  void PhaseEnded(const Common::RunInfo& run, Common::RudStatus phase, Duration taken) override;
  void DocumentStepDone(const Common::RunInfo& run, const Common::DocumentStep& step) override;

 private:
  const OnPhase onPhase_;
  std::map<Common::RudStatus, double> phases_;
  Common::FilesCounts counts_;
  Seen seen_;
};

}  // namespace Norvik::Cli
