#pragma once

#include <ctime>
#include <functional>
#include <istream>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// Returns when a package of an architecture was installed, in seconds since the epoch; 0: unknown.
using PackageDate =
    std::function<std::time_t(const std::string& package, const std::string& architecture)>;

/// The installed packages in the package status file of Debian. Stanzas without a name, and lines
/// that are no field, are skipped. `date` is called once for each package.
NORVIK_COMMON_API std::vector<SoftwareRegisteredInfo> ReadPackageStatus(std::istream& status,
                                                                        const PackageDate& date);

}  // namespace Norvik::Common
