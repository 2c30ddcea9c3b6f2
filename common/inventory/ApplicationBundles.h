#pragma once

#include <vector>

#include "common/records/SoftwareRegisteredInfo.h"

namespace Norvik::Common {

/// The application bundles in the folders of the machine where applications are installed, and in
/// the `Applications` of the users' folders. Not those inside other bundles. Names and paths are
/// those that the report of `system_profiler` has in English; the processors, the signature and the
/// source stay empty. Folders are found by `MachinePath`; what cannot be read is left out.
std::vector<SoftwareRegisteredInfo> ReadApplicationBundles();

}  // namespace Norvik::Common
