#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/RunningAgent.h"
#include "cli/commands/StatusRecorder.h"
#include "common/action/ActionCodes.h"
#include "common/files/Paths.h"
#include "common/files/TextFile.h"
#include "common/text/Text.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/configuration/ConfigurationWarnings.h"
#include "host/data/DataFolder.h"

namespace Norvik::Cli {

using namespace Host;

using namespace Common;

namespace {

int Check(const EffectiveConfiguration& configuration, const boost::filesystem::path& dataFolder,
          bool json, std::ostream& output) {
  OrderedJson list = OrderedJson::array();
  std::string text;
  for (const auto& warning : WarningsOf(configuration.values, dataFolder / KEY_FOLDER)) {
    list.push_back({{"key", warning.key}, {"value", warning.value}, {"text", warning.text}});
    text += warning.key + ": " + EscapeControls(warning.value) +
            (warning.value.empty() ? "" : " ") + warning.text + "\n";
  }
  if (text.empty()) text = "nothing in it will surprise\n";
  const OrderedJson sources = configuration.sources;
  output << (json ? JsonLine({{"warnings", list}, {"sources", sources}})
                  : text + SourceLines(sources));
  return EXIT_DONE;
}

/// Prints no statuses: those go to the server of the running agent.
int ReportAppliedByAgent(const AgentConfigurationInfo& configuration, const OrderedJson& answer,
                         bool json, std::ostream& output) {
  const auto stored = answer.value("stored", "");
  output << (json ? JsonLine({{"stored", stored}, {"profileId", configuration.profileId}})
                  : "configuration of profile " + std::to_string(configuration.profileId) +
                        " is stored in " + stored + "; the running agent applies it\n");
  return EXIT_DONE;
}

}  // namespace

int RunConfigure(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const ConfigurationFile given = ReadConfigurationFile(line.file);
  if (line.check) return Check(given.configuration, line.agent.dataFolder, line.json, output);
  const AgentConfigurationInfo& configuration = given.configuration.values;

  const auto answer =
      AskAgentIfRunning(line.socket, {{"request", "configure"}, {"text", given.text}});
  if (answer) return ReportAppliedByAgent(configuration, *answer, line.json, output);

  AgentOptions options = line.agent;
  // The module is created with the stored configuration, so that it notices the change. It reads
  // the server's settings only on creation, so these are the new ones.
  options.newConfiguration = given.configuration;
  AgentHost host(options);
  const auto stored = Paths(Paths::DATA, true).AppData() / CONFIGURATION_FILE;
  WriteTextFile(stored, given.text);
  if (host.History()) host.History()->SetLimits(given.configuration.history);

  if (!line.json) {
    output << "applying it; if it differs from the last one, an inventory is taken" << std::endl;
  }
  const auto recorder = std::make_shared<StatusRecorder>();
  const ProgressListenerScope listening(recorder);
  ActionParameters parameters;
  parameters.Set(COMMON_PARAMETER_CONFIGURATION, ForModule(given.configuration, host.Identifier()));
  host.Run(COMMON_ACTION_NEW_CONFIGURATION, parameters);

  const auto statuses = recorder->Statuses();
  std::string text = "configuration of profile " + std::to_string(configuration.profileId) +
                     " is stored in " + stored.string() + " and applied\n";
  for (const auto& status : statuses) text += "status: " + StatusText(status) + "\n";
  const OrderedJson report = {{"stored", stored.string()},
                              {"profileId", configuration.profileId},
                              {"statuses", StatusesToJson(statuses)}};
  output << (line.json ? JsonLine(report) : text);
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
