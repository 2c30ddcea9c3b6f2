#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/RunningAgent.h"

namespace Norvik::Cli {

using namespace Host;

int RunNotify(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const auto answer = AskRunningAgent(line.socket, {{"request", "notify"}, {"what", line.what}});
  output << (line.json ? JsonLine(answer) : "the agent looks into the " + line.what + " changes\n");
  return EXIT_DONE;
}

int RunMessage(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const auto answer = AskRunningAgent(line.socket, {{"request", "message"}, {"text", line.text}});
  output << (line.json ? JsonLine(answer)
                       : "the agent shows the message in " +
                             answer.value("sessions", OrderedJson(0)).dump() + " sessions\n");
  return EXIT_DONE;
}

}  // namespace Norvik::Cli
