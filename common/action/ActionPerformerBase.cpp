#include "common/action/ActionPerformerBase.h"

#include <algorithm>
#include <boost/format.hpp>
#include <iterator>
#include <string>
#include <utility>

#include "common/action/ActionCodes.h"
#include "common/action/TaskOrigin.h"
#include "common/log/Logger.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::Common {

namespace {

std::string ActionNameOf(unsigned int code) {
  const auto* const name = std::find_if(std::begin(ACTION_NAMES), std::end(ACTION_NAMES),
                                        [&](const ActionName& a) { return a.code == code; });
  return name == std::end(ACTION_NAMES) ? std::to_string(code) : name->name;
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
  std::shared_ptr<ICommunicationSystem>(communications)
      ->ReportTaskStatus(StatusOfTask(parameters, status, message ? message : ""));
}

void ActionPerformerBase::RiseNewFileOnOutbox() {
  std::shared_ptr<ICommunicationSystem>(communications)->NewFileOnOutbox();
}

}  // namespace Norvik::Common
