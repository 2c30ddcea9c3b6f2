#pragma once

#include <chrono>
#include <cstdint>
#include <vector>

#include "cli/commands/Rendering.h"

namespace Norvik::Cli {

// Thresholds of the checks below.
/// Without contact for longer, although there is something to send or to fetch.
inline constexpr std::chrono::hours LONGEST_SILENCE{24};
/// Bytes that the file system of the data folder needs to have free.
inline constexpr std::uintmax_t LEAST_FREE_BYTES = 500'000'000;

/// What of a status needs a person: [{"check": "disk", "text": "..."}], in the order of the table
/// in docs/running-agent.md. Empty if the agent gets along by itself.
OrderedJson AttentionOf(const OrderedJson& status, std::chrono::system_clock::time_point now);

}  // namespace Norvik::Cli
