#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <memory>
#include <string>

#include "common/Api.h"
#include "common/progress/ProgressListener.h"

namespace Norvik::Common {

// How work reports to the process's `IProgressListener`. Without a listener nothing happens. None
// of this throws because of a listener.

/// A run of an inventory on this thread, until the end of the scope. What the thread reports until
/// then belongs to the run.
class NORVIK_COMMON_API RunScope {
 public:
  explicit RunScope(RunKind kind);
  RunScope(const RunScope&) = delete;
  RunScope& operator=(const RunScope&) = delete;
  ~RunScope();

  /// Once, as soon as it is known.
  void DecideKind(bool incremental) const;

  const RunInfo& Info() const { return run_; }
  SeenCounts& Seen() const { return *seen_; }

 private:
  const std::shared_ptr<SeenCounts> seen_;
  const RunInfo run_;
  const RunScope* const outer_;
};

/// Retrieves a part of the document, until the end of the scope.
class NORVIK_COMMON_API SectionScope {
 public:
  explicit SectionScope(SectionKeys keys);
  SectionScope(const SectionScope&) = delete;
  SectionScope& operator=(const SectionScope&) = delete;
  ~SectionScope();

 private:
  const SectionKeys keys_;
  const std::chrono::steady_clock::time_point start_;
};

/// The phases of a file inventory. The end of the scope ends the last one.
class NORVIK_COMMON_API PhasesScope {
 public:
  PhasesScope() = default;
  PhasesScope(const PhasesScope&) = delete;
  PhasesScope& operator=(const PhasesScope&) = delete;
  ~PhasesScope();

  /// Ends the phase before. `RudStatusNone` and `RudStatusFinished` begin none.
  void Enter(RudStatus phase);

 private:
  void End();

  boost::optional<RudStatus> phase_;
  std::chrono::steady_clock::time_point start_;
};

/// The counts of this thread's run; outside of a run, counts that nothing reads.
NORVIK_COMMON_API SeenCounts& SeenByThisRun();

/// Counts one more, on the thread of the run: cheaper than an increment that others may share.
inline void CountOne(std::atomic<std::uint64_t>& counter) {
  counter.store(counter.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
}

// `IProgressListener` says what these mean.
NORVIK_COMMON_API void ReportTotalInstead(RunKind kind, const std::string& reason);
NORVIK_COMMON_API void ReportRefusal(RunKind kind, const std::string& reason);
NORVIK_COMMON_API void ReportNothingToSend();
NORVIK_COMMON_API void ReportRecords(const RecordCounts& records);
NORVIK_COMMON_API void ReportTool(const ToolRun& tool);
NORVIK_COMMON_API void ReportDocument(const DocumentStep& step);
NORVIK_COMMON_API void ReportTask(const TaskResponseInfo& status);

}  // namespace Norvik::Common
