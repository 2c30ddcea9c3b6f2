#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "host/health/HealthChecks.h"

namespace Norvik::Host {

/// A finding, with the remedy and the keys of the table where it has none of its own. Both are
/// empty if the outcome is ok.
struct CheckResult {
  const HealthCheck* check = nullptr;
  Finding finding;
  std::chrono::milliseconds time{0};
};

/// How long a check may take.
inline constexpr std::chrono::milliseconds CHECK_LIMIT{2000};

/// Runs the checks at the same time, each on a thread of its own, and returns their results in the
/// same order after `limit` at most: a check that has not ended then is unknown, and its thread
/// goes on with what it shares. Throws only `std::bad_alloc`.
std::vector<CheckResult> RunChecks(const std::vector<HealthCheck>& checks,
                                   const std::shared_ptr<const Examined>& examined,
                                   std::chrono::milliseconds limit = CHECK_LIMIT);

/// Whether a check of this process still runs. The process then has to end by `std::_Exit`: others
/// would destroy what the check uses.
bool AreChecksRunning();

}  // namespace Norvik::Host
