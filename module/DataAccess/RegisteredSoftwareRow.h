#pragma once

#include <cstddef>
#include <vector>

#include "common/database/DataBase.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::KOB {

/// Index of the install date in the row below, from 0.
constexpr std::size_t INSTALL_DATE_COLUMN = 3;

/// The ten values of a row of "KOB_REGISTERED_SOFTWARE", in the order is_patch, name,
/// uninstall_str, install_date (seconds since the epoch), version, publisher, size, product_id,
/// source, location.
std::vector<Common::V2::DataBaseValue> RegisteredSoftwareRow(
    const Common::SoftwareRegisteredInfo& software);

}  // namespace Norvik::KOB
