#include "host/run/AgentRequests.h"

#include <unistd.h>

#include <boost/format.hpp>
#include <chrono>
#include <map>
#include <stdexcept>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/log/LineLimit.h"
#include "common/log/Logger.h"
#include "common/text/Text.h"
#include "host/HostError.h"
#include "host/OutputText.h"
#include "host/assembly/ModuleActionCodes.h"
#include "host/run/ChangeNotice.h"
#include "host/run/CommandRun.h"
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
  const boost::filesystem::path& configurationFile;
  const std::shared_ptr<IpcService>& connections;
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
  return {
      {"processId", ::getpid()},
      {"dataFolder", agent.host.DataFolder().string()},
      {"configurationFile", agent.configurationFile.string()},
      {"sessions", sessions},
      {"messages", agent.processes.HandledMessages()},
      {"contact", agent.host.Server() ? OrderedJson::parse(ToText(agent.host.Server()->Contact()))
                                      : OrderedJson()},
      {"running", running},
      {"progress", agent.progress.ToJson()},
      {"next", due}};
}

OrderedJson Notify(const Agent& agent, const OrderedJson& request) {
  static const std::map<std::string, unsigned int> codes = {
      {"software", COMMON_ACTION_SOFTWARE_CHANGES}, {"hardware", COMMON_ACTION_HARDWARE_CHANGES}};
  const auto found = codes.find(TextAt(request, "what"));
  if (found == codes.end()) throw UsageError("only software and hardware can change");
  const auto now = std::chrono::system_clock::now();
  const auto inventory = InventoryAfterChange(now);
  agent.host.Queue(found->second, {});
  return {{"queued", found->second},
          {"inventory", inventory ? OrderedJson(TimeText(*inventory)) : OrderedJson()},
          {"atOnce", inventory == now}};
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

ActionResult ResultOf(unsigned int code, const ActionHandler& handler,
                      ActionParameters& parameters) {
  ActionResult result;
  try {
    result.response = handler(parameters);
  } catch (const std::exception& error) {
    NORVIK_ERROR(boost::format("Action %1% failed: %2%") % std::to_string(code) % error.what());
    result.failure = FailureOf(error);
  } catch (...) {
    NORVIK_ERROR(boost::format("Action %1% failed with an unknown exception") %
                 std::to_string(code));
    result.failure = "the action threw an exception";
  }
  return result;
}

/// The connection gets the answer when the action has ended.
void Run(const Agent& agent, const OrderedJson& request,
         const std::shared_ptr<IpcConnection>& from) {
  const auto code = request.at("code").get<unsigned int>();
  const ActionParameters parameters = ActionParametersOf(request.at("parameters"));
  RequireHandler(agent.host.Module(), code);
  NORVIK_INFORMATION(boost::format("The process of %1% runs the action %2%") % from->PeerText() %
                     std::to_string(code));
  // Only the action owns it: its end waits for the connection, which this thread serves.
  auto run = std::make_shared<CommandRun>(agent.connections, from);
  ModuleAction action = agent.host.Module().GetAction(code, parameters);
  action.handler = [run = std::move(run), code,
                    handler = std::move(action.handler)](ActionParameters& given) {
    const ErrandScope scope(run, 0);
    run->Set(ResultOf(code, handler, given));
    return ActionResponse();
  };
  const Lane lane = LaneOf(code) == Lane::Inventories ? Lane::Inventories : Lane::Commands;
  // An inventory logs more than a user may cause in a minute.
  const LineLimitScope unlimited(nullptr);
  agent.host.Actions()->RunInLane(lane, code, std::move(action));
}

using Handler = OrderedJson (*)(const Agent&, const OrderedJson&);

/// Empty if the answer comes later.
OrderedJson Dispatch(const Agent& agent, const std::string& text,
                     const std::shared_ptr<IpcConnection>& from) {
  static const std::map<std::string, Handler> handlers = {
      {"status", Status}, {"notify", Notify}, {"message", Message}, {"configure", Configure}};
  const auto request = OrderedJson::parse(text, nullptr, false);
  if (!request.is_object()) throw UsageError("the request is no JSON object");
  const std::string name = TextAt(request, "request");
  if (name == "run") {
    Run(agent, request, from);
    return nullptr;
  }
  const auto found = handlers.find(name);
  if (found == handlers.end()) throw UsageError("no request is called \"" + name + "\"");
  return found->second(agent, request);
}

OrderedJson Refusal(const std::exception& error, const std::string& from, bool wrongUse) {
  NORVIK_WARNING(boost::format("A request of %1% is refused: %2%") % from % ReasonOf(error));
  return {{"error", ReasonOf(error)}, {"wrongUse", wrongUse}};
}

}  // namespace

AgentRequests::AgentRequests(AgentHost& host, boost::filesystem::path configurationFile,
                             std::shared_ptr<IpcService> processes,
                             std::shared_ptr<const ServiceProgress> progress)
    : host_(host),
      configurationFile_(std::move(configurationFile)),
      processes_(std::move(processes)),
      progress_(std::move(progress)),
      texts_(std::make_shared<SerialActions>(host.Actions())),
      waiting_(std::make_shared<std::atomic<std::size_t>>(0)) {}

void AgentRequests::Answer(const std::string& request,
                           const std::shared_ptr<IpcConnection>& from) const {
  OrderedJson answer;
  try {
    answer = Dispatch(
        {host_, configurationFile_, processes_, *processes_, *progress_, *texts_, waiting_},
        request, from);
  } catch (const UsageError& error) {
    answer = Refusal(error, from->PeerText(), true);
  } catch (const std::exception& error) {
    answer = Refusal(error, from->PeerText(), false);
  }
  if (!answer.is_null()) from->Send(EncodeFrame(FrameKind::ANSWER, JsonLine(answer)));
}

}  // namespace Norvik::Host
