#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <boost/format.hpp>
#include <chrono>
#include <cstdlib>
#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/run/ServiceRun.h"
#include "host/run/StopSignals.h"
#include "host/run/UserNotice.h"
#include "host/run/UserRun.h"
#include "platform/SystemLog.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

using Common::OnOneLine;

/// The pause between two checks of the managed preferences: nothing reports a change of them.
constexpr std::chrono::minutes MANAGED_CHECK(1);

void ReportRunning(const CommandLine& line, const char* what,
                   const boost::filesystem::path& dataFolder, std::ostream& output) {
  const bool isRehearsed = !line.machine.empty() && !line.really;
  const OrderedJson report = {{"running", what},
                              {"processId", ::getpid()},
                              {"dataFolder", dataFolder.string()},
                              {"socket", line.socket.string()},
                              {"rehearses", isRehearsed}};
  const std::string text = std::string("the ") + what + " runs as process " +
                           std::to_string(::getpid()) + " on " + dataFolder.string() + ", socket " +
                           line.socket.string() +
                           (isRehearsed ? "; it only rehearses changes" : "") + "\n";
  output << (line.json ? JsonLine(report) : text) << std::flush;
}

/// Runs an agent until a signal ends it.
template <class Agent>
int RunUntilStopped(Agent& agent, StopSignals& signals) {
  agent.Start();
  const int signal =
      signals.Wait([&] { agent.Reload(); }, MANAGED_CHECK, [&] { agent.ReloadIfManagedChanged(); });
  NORVIK_INFORMATION(boost::format("Signal %1% ends the process") % signal);
  if (agent.Stop()) return EXIT_DONE;
  // Threads still use objects that a return would destroy.
  std::_Exit(EXIT_DONE);
}

/// Runs an agent. Why it does not start, or fails, is also written to the system's log where nobody
/// reads the error channel: launchd discards it.
template <class Run>
int ReportFailure(Run run) {
  try {
    return run();
  } catch (const std::exception& error) {
    struct stat channel {};
    const bool isDevice = ::fstat(STDERR_FILENO, &channel) == 0 && S_ISCHR(channel.st_mode);
    if (isDevice && ::isatty(STDERR_FILENO) == 0) {
      Platform::WriteSystemLog("norvik-agent: " + OnOneLine(ReasonOf(error)));
    }
    throw;
  }
}

/// A text for the user, line by line. Other control characters could act on a terminal.
std::string Lines(const std::string& title, const std::string& text) {
  std::string lines;
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    lines += title + ": " + OnOneLine(text.substr(start, end - start)) + "\n";
    start = end + 1;
  }
  return lines;
}

}  // namespace

int RunService(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  return ReportFailure([&] {
    StopSignals signals;
    ServiceRun service(line.agent, line.socket);
    ReportRunning(line, "service", service.DataFolder(), output);
    return RunUntilStopped(service, signals);
  });
}

int RunUser(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  return ReportFailure([&] {
    StopSignals signals;
    UserRun user(line.agent, line.socket, [&](const std::string& name, const std::string& text) {
      const std::string title = name == "Url" ? "survey" : "message";
      output << (line.json ? JsonLine({{title, text}}) : Lines(title, text)) << std::flush;
      ShowNotice(text);
    });
    ReportRunning(line, "user's process", user.DataFolder(), output);
    return RunUntilStopped(user, signals);
  });
}

}  // namespace Norvik::Cli
