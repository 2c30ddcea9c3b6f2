#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <string>

#include "common/progress/ProgressListener.h"
#include "host/OutputText.h"

namespace Norvik::Host {

/// Follows the runs of inventories in the service, and logs the time of each section at level 5.
class ServiceProgress : public Common::IProgressListener {
 public:
  /// The runs under way, the oldest first:
  /// [{"inventory":"machine","kind":"total","since":"2026-01-31T23:59:58Z","at":"software",
  ///   "sections":19}], or with "folders" and "files" in place of "sections" for one of "files".
  /// "kind" is empty while it is not decided, "at" between two sections or phases.
  OrderedJson ToJson() const;

  void RunBegun(const Common::RunInfo& run) override;
  void RunEnded(const Common::RunInfo& run) override;
  void KindDecided(const Common::RunInfo& run, bool incremental) override;
  void TotalInstead(const Common::RunInfo& run, const std::string& reason) override;
  void SectionBegun(const Common::RunInfo& run, const Common::SectionKeys& keys) override;
  void SectionEnded(const Common::RunInfo& run, const Common::SectionKeys& keys,
                    Duration taken) override;
  void PhaseBegun(const Common::RunInfo& run, Common::RudStatus phase) override;
  void PhaseEnded(const Common::RunInfo& run, Common::RudStatus phase, Duration taken) override;

 private:
  struct Run {
    Common::RunInfo info;
    std::chrono::system_clock::time_point since;
    std::string kind;
    std::string at;
    std::size_t sections = 0;  ///< retrieved
  };

  static OrderedJson ToJson(const Run& run);
  /// Nothing for what happens outside of a run.
  template <class Change>
  void With(const Common::RunInfo& run, Change change);

  mutable std::mutex mutex_;
  std::map<std::uint64_t, Run> runs_;
};

}  // namespace Norvik::Host
