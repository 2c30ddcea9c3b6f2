#include "host/run/AgentRequests.h"

#include <unistd.h>

#include <boost/format.hpp>
#include <chrono>
#include <map>
#include <stdexcept>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/OutputText.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/run/ConfigurationChange.h"

namespace Norvik::Host {

using namespace Common;

namespace {

constexpr std::size_t MOST_WAITING = 64 << 20;
/// What a user's process may have left to read when the next text is sent, and how long that waits.
constexpr std::size_t MOST_UNREAD = 1 << 20;
constexpr std::chrono::seconds READING_TIME(1);

struct Agent {
  AgentHost& host;
  IpcService& processes;
  const ServiceProgress& progress;
  SerialActions& texts;
  const std::shared_ptr<std::atomic<std::size_t>>& waiting;
};

std::string TextAt(const OrderedJson& request, const char* key) {
  const auto found = request.find(key);
  if (found == request.end() || !found->is_string()) {
    throw UsageError(std::string("the request needs a text under \"") + key + "\"");
  }
  return found->get<std::string>();
}

OrderedJson Status(const Agent& agent, const OrderedJson&) {
  OrderedJson sessions = OrderedJson::array();
  for (const auto& [id, data] : agent.processes.GetSessions()) {
    sessions.push_back({{"session", id}, {"processId", data.processId}});
  }
  OrderedJson running = OrderedJson::array();
  for (const auto& action : agent.host.Actions()->Running()) {
    running.push_back({{"action", action.label}, {"since", TimeText(action.since)}});
  }
  const auto next = agent.host.Actions()->Next();
  const OrderedJson due =
      next ? OrderedJson{{"action", next->label}, {"time", TimeText(next->time)}} : OrderedJson();
  return {{"processId", ::getpid()},
          {"dataFolder", agent.host.DataFolder().string()},
          {"sessions", sessions},
          {"messages", agent.processes.HandledMessages()},
          {"running", running},
          {"progress", agent.progress.ToJson()},
          {"next", due}};
}

OrderedJson Notify(const Agent& agent, const OrderedJson& request) {
  static const std::map<std::string, unsigned int> codes = {
      {"software", COMMON_ACTION_SOFTWARE_CHANGES}, {"hardware", COMMON_ACTION_HARDWARE_CHANGES}};
  const auto found = codes.find(TextAt(request, "what"));
  if (found == codes.end()) throw UsageError("only software and hardware can change");
  agent.host.Queue(found->second, {});
  return {{"queued", found->second}};
}

void QueueText(const Agent& agent, const std::string& text) {
  *agent.waiting += text.size();
  ModuleAction action = agent.host.Module().GetAction(ACTION_SHOW_MESSAGE, {});
  // The parameters are made when the action runs: they take four times the memory of the text.
  action.handler = [&module = agent.host.Module(), &processes = agent.processes,
                    text](ActionParameters&) {
    ActionParameters parameters;
    parameters.Set(PARAMETER_NAME, WxStringFromStdString(text));
    ModuleAction show = module.GetAction(ACTION_SHOW_MESSAGE, parameters);
    const ActionResponse response = show.handler(show.parameters);
    processes.WaitForReaders(MOST_UNREAD, READING_TIME);
    return response;
  };
  agent.texts.Add(ACTION_SHOW_MESSAGE, std::move(action),
                  [waiting = agent.waiting, size = text.size()] { *waiting -= size; });
}

OrderedJson Message(const Agent& agent, const OrderedJson& request) {
  const std::string text = TextAt(request, "text");
  if (agent.processes.GetSessions().empty()) {
    throw std::runtime_error("no user's process is connected");
  }
  if (*agent.waiting + text.size() > MOST_WAITING) {
    throw std::runtime_error("more than " + std::to_string(MOST_WAITING) +
                             " bytes of messages wait to be sent; try again later");
  }
  QueueText(agent, text);
  return {{"queued", static_cast<unsigned int>(ACTION_SHOW_MESSAGE)},
          {"sessions", agent.processes.GetSessions().size()}};
}

OrderedJson Configure(const Agent& agent, const OrderedJson& request) {
  StoreConfiguration(agent.host, TextAt(request, "text"));
  return {{"stored", (agent.host.DataFolder() / CONFIGURATION_FILE).string()}};
}

using Handler = OrderedJson (*)(const Agent&, const OrderedJson&);

OrderedJson Dispatch(const Agent& agent, const std::string& text) {
  static const std::map<std::string, Handler> handlers = {
      {"status", Status}, {"notify", Notify}, {"message", Message}, {"configure", Configure}};
  const auto request = OrderedJson::parse(text, nullptr, false);
  if (!request.is_object()) throw UsageError("the request is no JSON object");
  const std::string name = TextAt(request, "request");
  const auto found = handlers.find(name);
  if (found == handlers.end()) throw UsageError("no request is called \"" + name + "\"");
  return found->second(agent, request);
}

OrderedJson Refusal(const std::exception& error, const std::string& from, bool wrongUse) {
  NORVIK_WARNING(boost::format("A request of %1% is refused: %2%") % from % ReasonOf(error));
  return {{"error", ReasonOf(error)}, {"wrongUse", wrongUse}};
}

}  // namespace

AgentRequests::AgentRequests(AgentHost& host, std::shared_ptr<IpcService> processes,
                             std::shared_ptr<const ServiceProgress> progress)
    : host_(host),
      processes_(std::move(processes)),
      progress_(std::move(progress)),
      texts_(std::make_shared<SerialActions>(host.Actions())),
      waiting_(std::make_shared<std::atomic<std::size_t>>(0)) {}

std::string AgentRequests::Answer(const std::string& request, const std::string& from) const {
  OrderedJson answer;
  try {
    answer = Dispatch({host_, *processes_, *progress_, *texts_, waiting_}, request);
  } catch (const UsageError& error) {
    answer = Refusal(error, from, true);
  } catch (const std::exception& error) {
    answer = Refusal(error, from, false);
  }
  return JsonLine(answer);
}

}  // namespace Norvik::Host
