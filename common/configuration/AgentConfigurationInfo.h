#pragma once

#include <array>
#include <boost/optional.hpp>
#include <cstdint>

#include "common/configuration/CommunicationsInfo.h"
#include "common/configuration/KobConfigurationInfo.h"
#include "common/configuration/ProductConfigurations.h"

namespace Norvik::Common {

/// On which types of operating system the completion survey is offered.
struct SurveyInfo {
  bool onWindows = false;  ///< type 1
  bool onLinux = false;    ///< type 2
  bool onMacOs = false;    ///< type 0
};

/// The whole configuration of the agent. An empty optional is a product or an offer that this agent
/// does not have. This product reads `profileId`, `kob`, `survey` and `communications`.
struct AgentConfigurationInfo {
  std::uint32_t profileId = 0;
  std::uint32_t profileRevision = 0;
  boost::optional<KobConfigurationInfo> kob;
  boost::optional<DuvConfigurationInfo> duv;
  boost::optional<HoltConfigurationInfo> holt;
  boost::optional<PyrConfigurationInfo> pyr;
  boost::optional<GlyConfigurationInfo> gly;
  boost::optional<QorConfigurationInfo> qor;
  std::array<std::uint8_t, 2> flags{};
  boost::optional<SurveyInfo> survey;
  CommunicationsInfo communications;
};

}  // namespace Norvik::Common
