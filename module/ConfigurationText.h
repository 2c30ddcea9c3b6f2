#pragma once

#include <string>

#include "common/configuration/KobConfigurationInfo.h"

namespace Norvik::KOB {

/// The text of `operator<<`, whatever the locale: what a change of configuration is told by.
std::string ConfigurationText(const Common::KobConfigurationInfo& configuration);

}  // namespace Norvik::KOB
