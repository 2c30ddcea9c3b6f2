#pragma once

#include <chrono>
#include <cstdint>

namespace Norvik::KOB {

using Seconds = std::chrono::duration<std::int64_t>;

/// Between two total inventories.
inline constexpr Seconds PERIOD_TOTAL_INVENTORY{432000};
/// Between two collections of a user's network drives, and before the first.
inline constexpr Seconds PERIOD_GET_NET_DRIVES{3600};
inline constexpr Seconds DELAY_GET_NET_DRIVES{10};
/// Slack behind the earliest time of an inventory that a change asked for.
inline constexpr Seconds DELAY_TIME{10};
/// Before an inventory that found no token is tried again.
inline constexpr Seconds SECONDS_TO_RETRY_GET_INVENTORY{60};
/// Before the inventory that follows the removal of a printer.
inline constexpr Seconds SECONDS_GET_INVENTORY{60};
/// Default distance between two inventories that changes ask for.
inline constexpr Seconds INVENTORY_CHANGED_PERIOD{3600};

}  // namespace Norvik::KOB
