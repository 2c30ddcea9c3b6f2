#pragma once

#include <boost/optional.hpp>
#include <chrono>

namespace Norvik::Host {

/// When the module takes the inventory that a change noticed at this time causes, as it decides
/// itself: at once, or when the least period between inventories has passed since the last one.
/// Empty if that one is dated later than the given time: then the module does nothing. Throws what
/// the database throws.
boost::optional<std::chrono::system_clock::time_point> InventoryAfterChange(
    std::chrono::system_clock::time_point now);

}  // namespace Norvik::Host
