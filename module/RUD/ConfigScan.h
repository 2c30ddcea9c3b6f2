#pragma once

#include "common/files/ScanRules.h"

namespace Norvik::KOB::V2 {

using Common::ConfigScan;
using Common::ExcludeFile;
using Common::ExcludePath;
using Common::IncludeExtension;
using Common::IncludePath;
using Common::ScanConfiguration;

}  // namespace Norvik::KOB::V2
