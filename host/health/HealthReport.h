#pragma once

#include <string>
#include <vector>

#include "host/health/CheckRun.h"

namespace Norvik::Host {

/// What an examination of an agent has found.
struct HealthReport {
  std::string dataFolder;  ///< the one that was examined
  std::chrono::system_clock::time_point time;
  std::vector<CheckResult> results;

  /// How many checks have this outcome.
  std::size_t Count(Outcome outcome) const;
};

/// Runs checks on an agent, within `Examined::LIMIT` and `CHECK_LIMIT`. Creates and changes
/// nothing. `AreChecksRunning` may be true afterwards.
/// @param checks as in `HealthChecks()`, which must live as long as the report
HealthReport ExamineHealth(const HealthOptions& options,
                           const std::vector<HealthCheck>& checks = HealthChecks());

/// The report in JSON, as docs/schema/doctor.schema.json describes it.
OrderedJson ToJson(const HealthReport& report);

/// The keys of a finding or of a row of the table, which are separated by ", ".
std::vector<std::string> SeparateKeys(const std::string& keys);

}  // namespace Norvik::Host
