#pragma once

#include <memory>
#include <string>

#include "common/configuration/KobConfigurationInfo.h"
#include "common/database/IDataBase.h"

namespace Norvik::KOB {

/// The text of `operator<<`, whatever the locale: what a change of configuration is told by.
std::string ConfigurationText(const Common::KobConfigurationInfo& configuration);

/// Keeps that text in the agent data, as the classes of actions do that take a configuration on.
/// A failure is logged.
void KeepConfigurationText(const std::weak_ptr<Common::IDataBase>& dataBase,
                           const Common::KobConfigurationInfo& configuration);

}  // namespace Norvik::KOB
