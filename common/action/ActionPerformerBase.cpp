#include "common/action/ActionPerformerBase.h"

#include <algorithm>
#include <boost/format.hpp>
#include <iterator>
#include <string>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/log/Logger.h"
#include "common/rest/ICommunicationSystem.h"
#include "common/text/Text.h"

namespace Norvik::Common {

namespace {

std::string ActionNameOf(unsigned int code) {
  const auto* const name = std::find_if(std::begin(ACTION_NAMES), std::end(ACTION_NAMES),
                                        [&](const ActionName& a) { return a.code == code; });
  return name == std::end(ACTION_NAMES) ? std::to_string(code) : name->name;
}

/// A parameter as text, whatever type its sender chose. Empty for a type without a plain text.
struct ParameterText : boost::static_visitor<std::string> {
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const wxString& text) const { return ToUtf8(text); }
  std::string operator()(bool value) const { return value ? "true" : "false"; }
  std::string operator()(const ActionTimePoint& time) const {
    using std::chrono::duration_cast, std::chrono::seconds;
    return std::to_string(duration_cast<seconds>(time.time_since_epoch()).count());
  }
  std::string operator()(const AgentConfigurationInfo&) const { return {}; }
  template <class Number>
  std::string operator()(Number number) const {
    return std::to_string(number);
  }
};

std::string TextOf(const ActionParameters& parameters, const char* name) {
  const auto found = parameters.Values().find(name);
  if (found == parameters.Values().end()) return {};
  return boost::apply_visitor(ParameterText(), found->second);
}

using Dependencies = std::shared_ptr<ModuleDependencies>;

}  // namespace

ActionPerformerBase::ActionPerformerBase(const ProductCodes& product, const ActionFactory& factory,
                                         std::weak_ptr<ModuleDependencies> dependencies)
    : productCode(product),
      processKind(Dependencies(dependencies)->processKind),
      actionFactory(factory),
      actionSystem(Dependencies(dependencies)->actionSystem),
      communications(Dependencies(dependencies)->communications),
      dataBase(Dependencies(dependencies)->dataBase),
      identification(Dependencies(dependencies)->identification) {}

ActionPerformerBase::~ActionPerformerBase() = default;

ModuleAction ActionPerformerBase::GetAction(unsigned int code, const ActionParameters& parameters,
                                            const HandlerMap& handlers) {
  ModuleAction action;
  action.parameters = parameters;
  const auto found = handlers.find(code);
  if (found != handlers.end()) {
    action.name = ActionNameOf(code);
    action.handler = found->second;
    return action;
  }
  action.handler = [this, code](ActionParameters& given) {
    NORVIK_WARNING(boost::format("No handler is registered for the action %1%") %
                   std::to_string(code));
    return DefaultModuleAction(given);
  };
  return action;
}

ActionResponse ActionPerformerBase::DefaultModuleAction(ActionParameters&) { return {}; }

void ActionPerformerBase::RunOneShotAction(unsigned int code, const std::chrono::seconds& delay,
                                           ActionParameters* parameters) {
  const std::shared_ptr<IActionSystem> system(actionSystem);
  system->RunOneShot(code, actionFactory(code, parameters ? *parameters : ActionParameters()),
                     delay);
}

void ActionPerformerBase::CreatePeriodicAction(unsigned int code, AgentData& data,
                                               const std::chrono::seconds& period,
                                               const std::chrono::seconds& delay) {
  const std::shared_ptr<IActionSystem> system(actionSystem);
  system->CreatePeriodic(code, actionFactory(code, ActionParameters()), data,
                         {period, std::chrono::system_clock::now() + delay});
}

void ActionPerformerBase::ReplacePeriodicAction(unsigned int code, AgentData& data,
                                                const std::chrono::seconds& period,
                                                const std::chrono::seconds& delay) {
  const std::shared_ptr<IActionSystem> system(actionSystem);
  system->ReplacePeriodic(code, actionFactory(code, ActionParameters()), data,
                          {period, std::chrono::system_clock::now() + delay});
}

void ActionPerformerBase::ReplacePeriodicAction(unsigned int code, AgentData& data,
                                                const ScheduleInfo* schedule) {
  if (!schedule) return;
  const std::shared_ptr<IActionSystem> system(actionSystem);
  system->ReplacePeriodic(code, actionFactory(code, ActionParameters()), data,
                          {std::chrono::seconds(schedule->periodSeconds), schedule->NextTime()});
}

void ActionPerformerBase::SendStatusForProgrammedTask(
    ActionParameters& parameters, const TaskResponseInfo::ResponseStatusTypes& status,
    const char* message) {
  TaskResponseInfo response;
  response.status = status;
  if (message) response.message = message;
  response.taskName = TextOf(parameters, COMMON_PARAMETER_TASK_NAME);
  response.taskCreationDate = TextOf(parameters, COMMON_PARAMETER_TASK_CREATION_DATE);
  response.taskTimeStamp = TextOf(parameters, COMMON_PARAMETER_TASK_TIME_STAMP);
  response.requestId = TextOf(parameters, COMMON_PARAMETER_REQUEST_ID);
  std::shared_ptr<ICommunicationSystem>(communications)->ReportTaskStatus(response);
}

void ActionPerformerBase::RiseNewFileOnOutbox() {
  std::shared_ptr<ICommunicationSystem>(communications)->NewFileOnOutbox();
}

}  // namespace Norvik::Common
