#pragma once

#include <atomic>
#include <boost/filesystem/path.hpp>
#include <boost/optional.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/action/TaskResponseInfo.h"
#include "common/files/FilesCounts.h"
#include "common/inventory/RudStatus.h"

namespace Norvik::Common {

/// What a file inventory has seen so far. Only the thread of the run counts; any thread may read.
struct SeenCounts {
  std::atomic<std::uint64_t> folders{0};  ///< opened
  std::atomic<std::uint64_t> files{0};    ///< kept
};

enum class RunKind { MachineInventory, FileInventory };

/// One run of an inventory.
struct RunInfo {
  /// Counts the runs of this process from 1. 0 is work outside of a run: the host's own gathering
  /// when the module is loaded, or a request that has not become a run.
  std::uint64_t id = 0;
  RunKind kind = RunKind::MachineInventory;
  std::shared_ptr<const SeenCounts> seen;  ///< null outside of a run
};

/// Keys of the document's sections that one retrieval fills: {"setup", "portConnectors"}.
using SectionKeys = std::vector<std::string>;

/// Number of records by key of a section: elements of a list, 1 for a single record, 0 for null.
using RecordCounts = std::map<std::string, std::size_t>;

/// A tool that was asked something, and how that ended.
struct ToolRun {
  enum Outcome {
    DONE,
    FAILED,       ///< ended with another code than 0
    MISSING,      ///< not found in PATH
    NOT_STARTED,  ///< the shell could not be started
    TOO_LONG,     ///< ended at its time limit
    TOO_MUCH      ///< ended because it printed too much
  };

  std::string command;  ///< "diskutil info -all", without the filters after it
  Outcome outcome;
  int exitCode;  ///< of FAILED
  std::chrono::steady_clock::duration taken;
};

/// A step of a document towards the outbox.
struct DocumentStep {
  enum Kind { WRITE, COPY, COMPRESS, ENCRYPT, MOVE };

  Kind kind;
  bool done;
  boost::filesystem::path source;  ///< empty for WRITE
  boost::filesystem::path target;
  boost::optional<bool> incremental;  ///< of MOVE, as the pipeline was given it
  std::uintmax_t bytes = 0;           ///< of MOVE: size of the file, which may be sent at once
  /// Of WRITE in a file inventory: the files in the document, if they are counted already.
  boost::optional<FilesCounts> files = {};
};

/// Follows what the process does. Each operation does nothing unless it is overridden.
///
/// The operations are called on the thread that does the work, which waits for their return, so
/// they must be quick; those of several threads come at the same time. What one throws does not
/// reach the work: the first exception of a listener is logged at level 3, later ones are dropped.
///
/// Whatever begins also ends, in reverse order on its thread, even if an exception ends it.
/// Arguments are valid during the call.
class NORVIK_COMMON_API IProgressListener {
 public:
  using Duration = std::chrono::steady_clock::duration;

  virtual ~IProgressListener();

  virtual void RunBegun(const RunInfo& /*run*/) {}
  virtual void RunEnded(const RunInfo& /*run*/) {}
  /// Incremental or total. Comes once in a run.
  virtual void KindDecided(const RunInfo& /*run*/, bool /*incremental*/) {}
  /// A total inventory takes the place of an incremental one.
  /// @param run outside of a run if this was decided before it began
  virtual void TotalInstead(const RunInfo& /*run*/, const std::string& /*reason*/) {}
  /// A request was refused and becomes no run.
  virtual void RequestRefused(RunKind /*kind*/, const std::string& /*reason*/) {}
  /// The run has made no document, since there is nothing to report.
  virtual void NothingToSend(const RunInfo& /*run*/) {}

  // Sections of a machine inventory. One key may come more than once: facts that are gathered
  // before the inventory asks for them, or used again in it.
  virtual void SectionBegun(const RunInfo& /*run*/, const SectionKeys& /*keys*/) {}
  virtual void SectionEnded(const RunInfo& /*run*/, const SectionKeys& /*keys*/,
                            Duration /*taken*/) {}
  /// All sections are retrieved. Comes once in a run that makes a document.
  virtual void RecordsCounted(const RunInfo& /*run*/, const RecordCounts& /*records*/) {}
  /// A tool that was asked something has ended, in a run or outside of one.
  virtual void ToolEnded(const RunInfo& /*run*/, const ToolRun& /*tool*/) {}

  // Phases of a file inventory: scanning, saving and printing, one after the other.
  virtual void PhaseBegun(const RunInfo& /*run*/, RudStatus /*phase*/) {}
  virtual void PhaseEnded(const RunInfo& /*run*/, RudStatus /*phase*/, Duration /*taken*/) {}

  /// A step has worked or failed. A WRITE comes only if it worked.
  virtual void DocumentStepDone(const RunInfo& /*run*/, const DocumentStep& /*step*/) {}

  /// A task has reported its state.
  virtual void TaskReported(const TaskResponseInfo& /*status*/) {}

 protected:
  IProgressListener() = default;
  IProgressListener(const IProgressListener&) = default;
  IProgressListener& operator=(const IProgressListener&) = default;
};

/// The process's listener; null at first. A call that has begun on one listener ends on it, even if
/// another one is set before it returns.
NORVIK_COMMON_API std::shared_ptr<IProgressListener> GetProgressListener();
NORVIK_COMMON_API void SetProgressListener(std::shared_ptr<IProgressListener> listener);

/// Sets a listener for a scope.
class ProgressListenerScope {
 public:
  explicit ProgressListenerScope(std::shared_ptr<IProgressListener> listener)
      : previous_(GetProgressListener()) {
    SetProgressListener(std::move(listener));
  }
  ProgressListenerScope(const ProgressListenerScope&) = delete;
  ProgressListenerScope& operator=(const ProgressListenerScope&) = delete;
  ~ProgressListenerScope() { SetProgressListener(std::move(previous_)); }

 private:
  std::shared_ptr<IProgressListener> previous_;
};

/// Has a listener hear everything besides the process's listener, after it, as long as the object
/// exists.
class NORVIK_COMMON_API ProgressObserverScope {
 public:
  explicit ProgressObserverScope(std::shared_ptr<IProgressListener> observer);
  ProgressObserverScope(const ProgressObserverScope&) = delete;
  ProgressObserverScope& operator=(const ProgressObserverScope&) = delete;
  ~ProgressObserverScope();

 private:
  std::shared_ptr<IProgressListener> observer_;
};

}  // namespace Norvik::Common
