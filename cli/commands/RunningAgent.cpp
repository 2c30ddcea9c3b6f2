#include "cli/commands/RunningAgent.h"

#include <stdexcept>

#include "host/HostError.h"
#include "host/ipc/AskAgent.h"

namespace Norvik::Cli {

using namespace Host;

OrderedJson AskRunningAgent(const boost::filesystem::path& socket, const OrderedJson& request) {
  const auto answer = OrderedJson::parse(AskAgent(socket, JsonLine(request)), nullptr, false);
  if (!answer.is_object()) throw std::runtime_error("the agent gave no JSON object");
  const auto error = answer.find("error");
  if (error == answer.end()) return answer;
  const std::string text = error->is_string() ? error->get<std::string>() : error->dump();
  if (answer.value("wrongUse", false)) throw UsageError(text);
  throw std::runtime_error(text);
}

boost::optional<OrderedJson> AskAgentIfRunning(const boost::filesystem::path& socket,
                                               const OrderedJson& request) {
  try {
    return AskRunningAgent(socket, request);
  } catch (const NoAnswer&) {
    return boost::none;
  }
}

std::string RunningAgentLines(const OrderedJson& agent) {
  if (agent.is_null()) return "agent: not running\n";
  std::string text = "agent: running as process " + agent.value("processId", OrderedJson()).dump();
  text += ", " + std::to_string(agent.value("sessions", OrderedJson()).size()) + " sessions\n";
  for (const auto& action : agent.value("running", OrderedJson())) {
    text += "running: " + action.value("action", "") + " since " + action.value("since", "") + "\n";
  }
  const OrderedJson next = agent.value("next", OrderedJson());
  if (next.is_object()) {
    text += "next: " + next.value("action", "") + " at " + next.value("time", "") + "\n";
  }
  return text;
}

}  // namespace Norvik::Cli
