#include "cli/commands/RunningAgent.h"

#include <chrono>
#include <stdexcept>

#include "host/HostError.h"
#include "host/ipc/AskAgent.h"

namespace Norvik::Cli {

using namespace Host;

constexpr std::chrono::seconds LIMIT(10);

OrderedJson AskRunningAgent(const boost::filesystem::path& socket, const OrderedJson& request,
                            const std::function<void(const std::string& events)>& onEvents) {
  const std::string content = AskAgent(socket, JsonLine(request), LIMIT, onEvents);
  auto answer = OrderedJson::parse(content, nullptr, false);
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

namespace {

/// "progress: file inventory, total, since TIME: scanning, 10 folders, 200 files".
std::string ProgressLine(const OrderedJson& run) {
  const bool ofFiles = run.value("inventory", "") == "files";
  const auto part = [&](const char* key) {
    const std::string text = run.value(key, "");
    return text.empty() ? text : text + ", ";
  };
  const auto count = [&](const char* key) { return run.value(key, OrderedJson()).dump() + " "; };
  const std::string counts = ofFiles ? count("folders") + "folders, " + count("files") + "files"
                                     : count("sections") + "sections done";
  return std::string("progress: ") + (ofFiles ? "file" : "machine") + " inventory, " +
         part("kind") + "since " + run.value("since", "") + ": " + part("at") + counts + "\n";
}

}  // namespace

std::string RunningAgentLines(const OrderedJson& agent, const OrderedJson& problem) {
  if (problem.is_string()) {
    return "agent: running, but it does not answer: " + problem.get<std::string>() + "\n";
  }
  if (agent.is_null()) return "agent: not running\n";
  std::string text = "agent: running as process " + agent.value("processId", OrderedJson()).dump();
  text += ", " + std::to_string(agent.value("sessions", OrderedJson()).size()) + " sessions\n";
  for (const auto& action : agent.value("running", OrderedJson())) {
    text += "running: " + action.value("action", "") + " since " + action.value("since", "") + "\n";
  }
  for (const auto& run : agent.value("progress", OrderedJson())) text += ProgressLine(run);
  const OrderedJson next = agent.value("next", OrderedJson());
  if (next.is_object()) {
    text += "next: " + next.value("action", "") + " at " + next.value("time", "") + "\n";
  }
  return text;
}

}  // namespace Norvik::Cli
