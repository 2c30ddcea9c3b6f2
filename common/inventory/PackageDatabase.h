#pragma once

#include <ctime>
#include <functional>
#include <istream>
#include <string>
#include <vector>

#include "common/Api.h"
#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// Time of installation of a package of an architecture, in seconds since the epoch; 0: unknown.
using PackageDate =
    std::function<std::time_t(const std::string& package, const std::string& architecture)>;

/// The installed packages of Debian's package status file. Stanzas without a name and lines that
/// are no field are passed over.
NORVIK_COMMON_API std::vector<SoftwareRegisteredInfo> ReadPackageStatus(std::istream& status,
                                                                        const PackageDate& date);

}  // namespace Norvik::Common
