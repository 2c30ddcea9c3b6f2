#pragma once

#include <chrono>
#include <string>

#include "common/configuration/KobConfigurationInfo.h"

namespace Norvik::Host {

/// How far the agents of a fleet with the same configuration are spread.
struct ScheduleSpread {
  unsigned int percent = 10;  ///< of a schedule's period; 0: none
  std::chrono::seconds most{3600};
};

/// Moves each schedule that repeats by a part of its period, so that a fleet does not run at the
/// same second. The part depends on the identifier of the agent only.
void SpreadSchedules(Common::KobConfigurationInfo& configuration, const ScheduleSpread& spread,
                     const std::string& identifier);

}  // namespace Norvik::Host
