#include "module/HeldConfiguration.h"

#include <locale>
#include <sstream>

#include "common/action/ActionParameters.h"
#include "common/database/AgentData.h"
#include "common/log/Logger.h"

namespace Norvik::KOB {

using Guard = std::lock_guard<std::mutex>;

std::string ConfigurationText(const Common::KobConfigurationInfo& configuration) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << configuration;
  return stream.str();
}

HeldConfiguration::HeldConfiguration(const Common::AgentConfigurationInfo& agent)
    : communications_(agent.communications), kob_(agent.kob), profileId_(agent.profileId) {}

void HeldConfiguration::Replace(const Common::AgentConfigurationInfo& agent,
                                const std::weak_ptr<Common::IDataBase>& dataBase) {
  const Guard guard(lock_);
  profileId_ = agent.profileId;
  if (!agent.kob) {
    NORVIK_ERROR("missing configuration");
    return;
  }
  kob_ = agent.kob;
  const std::string key =
      std::string("KOB_ACTIONS_LOCAL_") + Common::COMMON_PARAMETER_CONFIGURATION;
  Common::AgentData(dataBase, Common::AGENT_DATA_TABLE).SetString(key, ConfigurationText(*kob_));
}

boost::optional<Common::KobConfigurationInfo> HeldConfiguration::Kob() const {
  const Guard guard(lock_);
  return kob_;
}

std::uint32_t HeldConfiguration::ProfileId() const {
  const Guard guard(lock_);
  return profileId_;
}

}  // namespace Norvik::KOB
