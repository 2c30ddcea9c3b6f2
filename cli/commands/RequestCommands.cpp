#include <ostream>

#include "cli/commands/Commands.h"
#include "cli/commands/Rendering.h"
#include "cli/commands/RunningAgent.h"

namespace Norvik::Cli {

using namespace Host;

namespace {

std::string NotifyText(const OrderedJson& answer) {
  if (answer.value("atOnce", false)) return "the agent takes an incremental inventory at once\n";
  const OrderedJson inventory = answer.value("inventory", OrderedJson());
  if (inventory.is_string()) {
    return "the agent takes an incremental inventory at " + inventory.get<std::string>() +
           ", since the last one was taken shortly before\n";
  }
  return "no inventory follows: the last one is dated later than now\n";
}

}  // namespace

int RunNotify(const CommandLine& line, std::ostream& output, std::ostream& /*errors*/) {
  const auto answer = AskRunningAgent(line.socket, {{"request", "notify"}, {"what", line.what}});
  output << (line.json ? JsonLine(answer) : NotifyText(answer));
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
