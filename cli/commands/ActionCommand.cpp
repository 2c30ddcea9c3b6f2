#include <boost/filesystem/operations.hpp>
#include <boost/format.hpp>
#include <cstdint>
#include <ostream>
#include <set>

#include "cli/RecordedMachineOption.h"
#include "cli/commands/ActionArguments.h"
#include "cli/commands/ActionOutcome.h"
#include "cli/commands/ActionRunner.h"
#include "cli/commands/Commands.h"
#include "cli/commands/RunningAgent.h"
#include "cli/commands/StatusRecorder.h"
#include "cli/rehearsal/RehearsalHost.h"
#include "cli/rehearsal/RehearsalReport.h"
#include "common/log/Logger.h"
#include "host/HostError.h"
#include "host/actions/ActionLanes.h"
#include "host/actions/Errand.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using namespace Common;

/// Records the statuses of one action, whose number is 0: not those of the actions that it starts,
/// except for the second half of a file inventory.
class OwnStatuses : public StatusRecorder {
 public:
  explicit OwnStatuses(unsigned int code) : continues_(LaneOf(code) == Lane::Inventories) {}

  void RunBegun(const RunInfo& run) override {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (continues_ && run.kind == RunKind::FileInventory) own_.insert(Errand::CurrentAction());
  }
  void TaskReported(const TaskResponseInfo& status) override {
    if (IsOwn()) StatusRecorder::TaskReported(status);
  }

 private:
  bool IsOwn() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return own_.count(Errand::CurrentAction()) != 0;
  }

  const bool continues_;
  std::set<std::uint64_t> own_{0};
};

ActionOutcome RunOne(const CommandLine& line, unsigned int code) {
  const ActionParameters parameters = ParseActionParameters(line.parameters);
  const auto recorder = std::make_shared<OwnStatuses>(code);
  ActionOutcome outcome;
  static_cast<ActionResult&>(outcome) =
      ActionRunner(line, recorder, [](const LogLine&) {}).Run(code, parameters);
  outcome.statuses = recorder->Statuses();
  return outcome;
}

int CodeFor(const ActionOutcome& outcome, unsigned int code, bool json, std::ostream& errors) {
  if (!outcome.HasFailed()) return EXIT_DONE;
  const std::string reason = outcome.Reason();
  errors << MessageLine(json, "action " + std::to_string(code) + " failed" +
                                  (reason.empty() ? "" : ": ") + reason)
         << std::flush;
  return EXIT_FAILED;
}

/// Users connected to the running agent, if one runs on the same data folder.
RehearsedCommunications::Sessions ConnectedSessions(const CommandLine& line) {
  RehearsedCommunications::Sessions sessions;
  try {
    const auto status = AskAgentIfRunning(line.socket, {{"request", "status"}});
    if (!status) return sessions;
    boost::system::error_code ignored;
    const std::string folder = status->at("dataFolder");
    if (!boost::filesystem::equivalent(folder, line.agent.dataFolder, ignored)) return sessions;
    for (const auto& session : status->at("sessions")) {
      sessions[session.at("session")].processId = session.at("processId");
    }
  } catch (const std::exception& error) {
    NORVIK_WARNING(boost::format("The running agent does not say who is connected: %1%") %
                   error.what());
  }
  return sessions;
}

int Rehearse(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const unsigned int code = ParseActionCode(line.action);
  const ActionParameters parameters = ParseActionParameters(line.parameters);
  RehearsalHost host(line.agent, ConnectedSessions(line));
  RequireHandler(host.Module(), code);
  const RehearsalReport report(code, host.Run(code, parameters));
  output << host.InOriginal(line.json ? JsonLine(report.ToJson()) : report.ToText());
  return CodeFor(report.Outcome(), code, line.json, errors);
}

}  // namespace

int RunAction(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  const bool isRecorded = HasRecordedMachines() && !line.machine.empty();
  if (line.rehearse || (isRecorded && !line.really)) return Rehearse(line, output, errors);
  const unsigned int code = ParseActionCode(line.action);
  const ActionOutcome outcome = RunOne(line, code);
  output << (line.json ? ToJsonLine(code, outcome) : ToText(outcome));
  return CodeFor(outcome, code, line.json, errors);
}

}  // namespace Norvik::Cli
