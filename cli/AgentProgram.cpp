#include "cli/AgentProgram.h"

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <optional>
#include <utility>

#include "cli/RecordedMachineOption.h"
#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "common/LibraryVersion.h"
#include "common/database/AgentDatabase.h"
#include "host/HostError.h"
#include "host/assembly/StandardChannels.h"
#include "host/health/CheckRun.h"
#include "platform/Rehearsal.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Command = int (*)(const CommandLine&, std::ostream&, std::ostream&);

const std::map<std::string, Command>& AllCommands() {
  static const std::map<std::string, Command> commands = {
      {"inventory", RunInventory}, {"files", RunFiles},
      {"explain", RunExplain},     {"open", RunOpen},
      {"apply", RunApply},         {"diff", RunDiff},
      {"action", RunAction},       {"actions", RunActions},
      {"configure", RunConfigure}, {"status", RunStatus},
      {"run", RunService},         {"user", RunUser},
      {"notify", RunNotify},       {"message", RunMessage},
      {"record", RunRecord},       {"why", RunWhy},
      {"show", RunShow},           {"history", RunHistory},
      {"view", RunView},           {"doctor", RunDoctor},
      {"redact", RunRedact},       {"keys", RunKeys}};
  return commands;
}

int Run(const CommandLine& line, std::ostream& output, std::ostream& errors) {
  if (line.command.empty()) {
    output << line.help;
    return EXIT_DONE;
  }
  const auto machine = UseRecordedMachine(line.machine);
  // What a recorded machine is asked to change would change this one. `action` has a rehearsal of
  // its own, which it reports.
  std::optional<Platform::Rehearsal> rehearsal;
  if (machine && !line.really && line.command != "action") rehearsal.emplace();
  return AllCommands().at(line.command)(line, output, errors);
}

/// Reports a wait for the database, once.
class WaitNotice {
 public:
  WaitNotice(std::ostream& errors, bool json) {
    Common::AgentDatabase::SetWaitListener([&errors, json, reported = false]() mutable {
      if (std::exchange(reported, true)) return;
      errors << MessageLine(json, "waiting for the database, which another program holds")
             << std::flush;
    });
  }
  WaitNotice(const WaitNotice&) = delete;
  WaitNotice& operator=(const WaitNotice&) = delete;
  ~WaitNotice() { Common::AgentDatabase::SetWaitListener({}); }
};

}  // namespace

int RunAgentProgram(const std::vector<std::string>& arguments, std::ostream& output,
                    std::ostream& errors) {
  // Known before the command line is, so that its errors are in JSON as well.
  const bool json = std::count(arguments.begin(), arguments.end(), "--json") > 0;
  const auto fail = [&](const std::exception& error, ExitCode code) {
    errors << MessageLine(json, ReasonOf(error)) << std::flush;
    return code;
  };
  try {
    Common::RequireLibraryVersion("norvik-agent");
    Common::AgentDatabase::LeaveOutConnectionLocks();
    const WaitNotice notice(errors, json);
    const int code = Run(ParseCommandLine(arguments), output, errors);
    if (output.flush()) return code;
    throw std::runtime_error("cannot write the output");
  } catch (const UsageError& error) {
    return fail(error, EXIT_WRONG_USE);
  } catch (const std::exception& error) {
    return fail(error, EXIT_FAILED);
  }
}

int RunAgentProgram(const std::vector<std::string>& arguments) {
  FillStandardChannels();
  OwnErrors errors;
  const int code = RunAgentProgram(arguments, std::cout, errors);
  // A check that hangs still uses objects that a return would destroy.
  if (AreChecksRunning()) std::_Exit(code);
  return code;
}

}  // namespace Norvik::Cli
