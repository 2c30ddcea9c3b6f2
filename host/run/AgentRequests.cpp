#include "host/run/AgentRequests.h"

#include <unistd.h>

#include <boost/format.hpp>
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

struct Agent {
  AgentHost& host;
  ICommunicationIPC& processes;
  const ServiceProgress& progress;
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

OrderedJson Message(const Agent& agent, const OrderedJson& request) {
  const std::string text = TextAt(request, "text");
  if (agent.processes.GetSessions().empty()) {
    throw std::runtime_error("no user's process is connected");
  }
  ActionParameters parameters;
  parameters.Set(PARAMETER_NAME, WxStringFromStdString(text));
  agent.host.Queue(ACTION_SHOW_MESSAGE, parameters);
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

AgentRequests::AgentRequests(AgentHost& host, std::shared_ptr<ICommunicationIPC> processes,
                             std::shared_ptr<const ServiceProgress> progress)
    : host_(host), processes_(std::move(processes)), progress_(std::move(progress)) {}

std::string AgentRequests::Answer(const std::string& request, const std::string& from) const {
  OrderedJson answer;
  try {
    answer = Dispatch({host_, *processes_, *progress_}, request);
  } catch (const UsageError& error) {
    answer = Refusal(error, from, true);
  } catch (const std::exception& error) {
    answer = Refusal(error, from, false);
  }
  return JsonLine(answer);
}

}  // namespace Norvik::Host
