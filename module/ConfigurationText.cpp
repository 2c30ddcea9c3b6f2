#include "module/ConfigurationText.h"

#include <locale>
#include <sstream>

#include "common/action/ActionParameters.h"
#include "common/database/AgentData.h"

namespace Norvik::KOB {

std::string ConfigurationText(const Common::KobConfigurationInfo& configuration) {
  std::ostringstream stream;
  stream.imbue(std::locale::classic());
  stream << configuration;
  return stream.str();
}

void KeepConfigurationText(const std::weak_ptr<Common::IDataBase>& dataBase,
                           const Common::KobConfigurationInfo& configuration) {
  const std::string key =
      std::string("KOB_ACTIONS_LOCAL_") + Common::COMMON_PARAMETER_CONFIGURATION;
  Common::AgentData(dataBase, Common::AGENT_DATA_TABLE)
      .SetString(key, ConfigurationText(configuration));
}

}  // namespace Norvik::KOB
