#pragma once

#include <chrono>
#include <cstdint>

#include "common/action/ActionCodes.h"

namespace Norvik::KOB {

/// Codes of this product.
enum ActionCodes : unsigned int { NORVIK_KOB_ACTION_CODES(NORVIK_ACTION_ENUMERATOR) };

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
inline constexpr std::int64_t INVENTORY_DEFAULT_ID = 0;

/// Table of the agent database that holds the agent's general data.
inline constexpr char AGENT_DATA_TABLE[] = "DATA";
/// Key of that table: time of the last machine inventory; 0 or absent: there was none. The host
/// reads it as well.
inline constexpr char LAST_INVENTORY_KEY[] = "KOB_INVENTORY";

}  // namespace Norvik::KOB
