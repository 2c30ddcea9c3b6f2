#pragma once

#include <boost/optional.hpp>
#include <chrono>
#include <string>

#include "common/Api.h"
#include "common/configuration/ScheduleInfo.h"

namespace Norvik::Common {

// Keys of the "DATA" table, written by the module: the time of the last run in seconds since the
// epoch. 0 or a missing key means: no inventory yet. File inventories count if they were
// scheduled.
inline constexpr char LAST_INVENTORY_KEY[] = "KOB_INVENTORY";
inline constexpr char LAST_FILE_INVENTORY_KEY[] = "RUD_INVENTORY";
inline constexpr char LAST_INCREMENTAL_FILE_INVENTORY_KEY[] = "RUD_INVENTORY_INCREMENTAL";

/// Key of the "DATA" table, written by `MoveToOutbox`: when the last document of a machine
/// inventory reached the outbox, in seconds since the epoch.
inline constexpr char LAST_DOCUMENT_KEY[] = "LAST_DOCUMENT";

/// The schedule to install for an inventory that has no execution pending: the configured one, its
/// next execution moved to the first of its times that is not past. Empty stays empty.
NORVIK_COMMON_API boost::optional<ScheduleInfo> CheckInventoryNextExecutionInit(
    const boost::optional<ScheduleInfo>& schedule);

/// The execution that a schedule has pending from before a restart: the first of its times after
/// the last run, or now if that time has passed. The time of the last run is read from the "DATA"
/// table under `key`, which throws what the database throws. `from_time_t(0)` if there was no run
/// yet or the schedule is empty.
NORVIK_COMMON_API std::chrono::system_clock::time_point CheckInventoryNextExecutionReboot(
    const std::string& key, const boost::optional<ScheduleInfo>& schedule);

}  // namespace Norvik::Common
