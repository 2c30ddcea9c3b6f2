#include "host/run/ConfigurationChange.h"

#include <tuple>

#include "common/action/ActionCodes.h"
#include "common/commands/CommandRunner.h"
#include "common/files/TextFile.h"
#include "common/log/Logger.h"

namespace Norvik::Host {

using namespace Common;

namespace {

/// The part of a configuration that the agent reads only when it starts.
auto FixedPart(const AgentConfigurationInfo& configuration) {
  const SurveyInfo survey = configuration.survey.get_value_or({});
  const CommunicationsInfo& server = configuration.communications;
  return std::make_tuple(server.address, server.port, server.certificateFile,
                         configuration.survey.has_value(), survey.onMacOs, survey.onWindows,
                         survey.onLinux);
}

}  // namespace

void ApplyConfiguration(AgentHost& host, const EffectiveConfiguration& effective) {
  const AgentConfigurationInfo& configuration = effective.values;
  CommandRunner::SetQueryLimit(effective.toolTimeLimit);
  if (host.History()) host.History()->SetLimits(effective.history);
  if (FixedPart(configuration) != FixedPart(host.Configuration()) ||
      effective.enrolmentSecret != host.EnrolmentSecret()) {
    NORVIK_INFORMATION("The new server and survey take effect at the next start of the agent");
  }
  ActionParameters parameters;
  parameters.Set(COMMON_PARAMETER_CONFIGURATION, ForModule(effective, host.Identifier()));
  host.Queue(COMMON_ACTION_NEW_CONFIGURATION, parameters);
}

void StoreConfiguration(AgentHost& host, const std::string& text) {
  const EffectiveConfiguration configuration = MakeConfiguration(text);
  WriteTextFile(host.DataFolder() / CONFIGURATION_FILE, text);
  ApplyConfiguration(host, configuration);
}

}  // namespace Norvik::Host
