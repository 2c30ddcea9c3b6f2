#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"

namespace Norvik::Host {

/// Keeps what each machine inventory costs, and writes it into the ledger of the process's open
/// database when the run ends. A failure to write is a line in the log. Safe on any thread.
///
/// A run is {"begun":"2026-01-31T23:59:58Z", "kind":"total", "milliseconds":9000, "sections":[...],
/// "records":{"displays":2}}, where "milliseconds" includes what the host gathered for it before; a
/// section {"keys":["displays"], "milliseconds":800, "tools":[...]}, in the order of the first
/// retrieval, with the sum of all; a tool {"command":"ioreg -l", "runs":1, "milliseconds":700,
/// "outcome":"done"}. Other outcomes are "exit code 1" and the like, "missing", "not started",
/// "time limit" and "printed too much"; several runs of one command have the worst of theirs.
/// "records" is empty if the run made no document.
class LedgerRecorder : public Common::IProgressListener {
 public:
  void RunBegun(const Common::RunInfo& run) override;
  void RunEnded(const Common::RunInfo& run) override;
  void KindDecided(const Common::RunInfo& run, bool incremental) override;
  void TotalInstead(const Common::RunInfo& run, const std::string& reason) override;
  void SectionBegun(const Common::RunInfo& run, const Common::SectionKeys& keys) override;
  void SectionEnded(const Common::RunInfo& run, const Common::SectionKeys& keys,
                    Duration taken) override;
  void RecordsCounted(const Common::RunInfo& run, const Common::RecordCounts& records) override;
  void ToolEnded(const Common::RunInfo& run, const Common::ToolRun& tool) override;

 private:
  struct Tool {
    std::string command;
    unsigned int runs = 0;
    Duration taken{0};
    Common::ToolRun::Outcome outcome = Common::ToolRun::DONE;
    int exitCode = 0;
  };
  struct Section {
    Common::SectionKeys keys;
    Duration taken{0};
    std::vector<Tool> tools;
  };
  struct Run {
    std::chrono::system_clock::time_point begun;
    std::chrono::steady_clock::time_point start;
    std::chrono::steady_clock::time_point last;  ///< end of the last section, or `start`
    Duration before{0};                          ///< of sections gathered before the run
    std::string kind;
    std::vector<Section> sections;
    std::vector<Common::SectionKeys> open;  ///< that are being retrieved, the innermost last
    Common::RecordCounts records;
  };

  static Run NewRun();
  static Section& SectionIn(Run& run, const Common::SectionKeys& keys);
  static Tool& ToolIn(Section& section, const std::string& command);
  static OrderedJson ToJson(const Run& run);
  static OrderedJson ToJson(const Tool& tool);
  /// Null for a run of another kind.
  Run* Find(const Common::RunInfo& run);

  std::mutex mutex_;
  /// Number 0 is what the host gathers outside of a run, for the next one.
  std::map<std::uint64_t, Run> runs_;
};

}  // namespace Norvik::Host
