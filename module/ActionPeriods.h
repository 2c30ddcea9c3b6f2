#pragma once

#include <chrono>
#include <cstdint>

namespace Norvik::KOB {

using Seconds = std::chrono::duration<std::int64_t>;

/// Time between two total inventories.
inline constexpr Seconds PERIOD_TOTAL_INVENTORY{432000};
/// Time between two collections of a user's network drives, and the delay before the first.
inline constexpr Seconds PERIOD_GET_NET_DRIVES{3600};
inline constexpr Seconds DELAY_GET_NET_DRIVES{10};
/// Added to the earliest time at which an inventory that a change requested may run.
inline constexpr Seconds DELAY_TIME{10};
/// Delay before an inventory that found no token is tried again.
inline constexpr Seconds SECONDS_TO_RETRY_GET_INVENTORY{60};
/// Delay of the inventory after a printer was removed.
inline constexpr Seconds SECONDS_GET_INVENTORY{60};
/// Default minimum time between two inventories that changes request.
inline constexpr Seconds INVENTORY_CHANGED_PERIOD{3600};

}  // namespace Norvik::KOB
