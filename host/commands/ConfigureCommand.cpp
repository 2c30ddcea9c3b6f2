#include <ostream>

#include "common/action/ActionCodes.h"
#include "common/files/Paths.h"
#include "host/AgentProgram.h"
#include "host/ConfigurationFile.h"
#include "host/TextFile.h"
#include "host/commands/Commands.h"
#include "host/commands/Rendering.h"
#include "host/commands/StatusRecorder.h"

namespace Norvik::Host {

using namespace Common;

int RunConfigure(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const ConfigurationFile given = ReadConfigurationFile(line.file);
  const AgentConfigurationInfo& configuration = given.configuration;

  AgentOptions options = line.agent;
  // The module is made with the configuration so far, so that it sees the change; but it looks at
  // the server only when it is made.
  options.communications = configuration.communications;
  AgentHost host(options);
  const auto stored = Paths(Paths::DATA, true).AppData() / CONFIGURATION_FILE;
  WriteTextFile(stored, given.text);

  const StatusRecorder recorder(host.GetCommunications());
  ActionParameters parameters;
  parameters.Set(COMMON_PARAMETER_CONFIGURATION, configuration);
  host.Run(COMMON_ACTION_NEW_CONFIGURATION, parameters);

  OrderedJson statuses = OrderedJson::array();
  std::string text = "configuration of profile " + std::to_string(configuration.profileId) +
                     " is stored in " + stored.string() + " and applied\n";
  for (const auto& status : recorder.Statuses()) {
    statuses.push_back(StatusToJson(status));
    text += "status: " + StatusText(status) + "\n";
  }
  const OrderedJson answer = {
      {"stored", stored.string()}, {"profileId", configuration.profileId}, {"statuses", statuses}};
  output << (line.json ? JsonLine(answer) : text);
  return EXIT_DONE;
}

}  // namespace Norvik::Host
