#include "cli/commands/ActionRunner.h"

#include <boost/algorithm/string/join.hpp>
#include <boost/filesystem/operations.hpp>
#include <stdexcept>
#include <utility>

#include "cli/commands/RunningAgent.h"
#include "common/files/Paths.h"
#include "host/HostError.h"
#include "host/configuration/ConfigurationFile.h"
#include "host/ipc/AskAgent.h"
#include "host/run/ProgressEvents.h"

namespace Norvik::Cli {

using namespace Host;
using namespace Common;

namespace {

/// The status of the agent that runs on the data folder of a command line; empty if none does.
/// Without --data that is the agent of the socket, wherever its data are.
boost::optional<OrderedJson> AgentOf(const CommandLine& line) {
  auto status = AskAgentIfRunning(line.socket, {{"request", "status"}});
  if (!status || !line.dataFolderGiven) return status;
  boost::system::error_code ignored;
  const std::string folder = status->value("dataFolder", "");
  if (boost::filesystem::equivalent(folder, line.agent.dataFolder, ignored)) return status;
  return boost::none;
}

void RefuseOwnOptions(const CommandLine& line, const OrderedJson& agent) {
  if (line.ownOptions.empty()) return;
  throw std::runtime_error("the agent that runs as process " +
                           agent.value("processId", OrderedJson()).dump() +
                           " does this and has its own settings: leave out " +
                           boost::join(line.ownOptions, ", ") + ", or end the agent");
}

}  // namespace

ActionRunner::ActionRunner(const CommandLine& line, std::shared_ptr<IProgressListener> listener,
                           LogListener onLine)
    : socket_(line.socket), listener_(std::move(listener)), onLine_(std::move(onLine)) {
  if (const auto agent = AgentOf(line)) {
    RefuseOwnOptions(line, *agent);
    Paths::SetDataFolder(agent->value("dataFolder", ""));
    configurationFile_ = agent->value("configurationFile", "");
    return;
  }
  listening_ = std::make_unique<const ProgressListenerScope>(listener_);
  AgentOptions options = line.agent;
  options.logListener = onLine_;
  host_ = std::make_unique<AgentHost>(options);
}

AgentConfigurationInfo ActionRunner::Configuration() const {
  if (host_) return host_->Configuration();
  const auto stored = Paths(Paths::DATA, false).AppData() / CONFIGURATION_FILE;
  return ReadConfiguration(configurationFile_, stored).values;
}

ActionResult ActionRunner::RunHere(unsigned int code, const ActionParameters& parameters) {
  RequireHandler(host_->Module(), code);
  ActionResult result;
  try {
    result.response = host_->Run(code, parameters);
  } catch (const std::exception& error) {
    result.failure = FailureOf(error);
  }
  return result;
}

ActionResult ActionRunner::Run(unsigned int code, const ActionParameters& parameters) {
  if (host_) return RunHere(code, parameters);
  ProgressReader reader(listener_, onLine_);
  bool begun = false;
  const auto onEvents = [&](const std::string& events) {
    begun = true;
    for (const auto& event : OrderedJson::parse(events)) reader.Read(event);
  };
  try {
    const OrderedJson request = {
        {"request", "run"}, {"code", code}, {"parameters", ToJson(parameters)}};
    return ResultOf(AskRunningAgent(socket_, request, onEvents));
  } catch (const NoAnswer&) {
    if (!begun) throw;
    throw std::runtime_error(
        "the running agent ended before the action did; its log says how far that was");
  }
}

}  // namespace Norvik::Cli
