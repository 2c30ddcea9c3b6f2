#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <map>
#include <memory>

#include "common/Api.h"
#include "common/action/IActionSystem.h"
#include "common/action/IModule.h"
#include "common/action/ModuleAction.h"
#include "common/action/ModuleDependencies.h"
#include "common/action/TaskResponseInfo.h"
#include "common/configuration/ScheduleInfo.h"
#include "common/database/AgentData.h"

namespace Norvik::Common {

using HandlerMap = std::map<unsigned int, ActionHandler>;

/// Base of every class that serves actions. Holds what such a class needs of the host, as weak
/// pointers; an operation here raises `std::bad_weak_ptr` when the service it needs has gone.
class NORVIK_COMMON_API ActionPerformerBase {
 public:
  /// Raises `std::bad_weak_ptr` if the dependencies have gone.
  ActionPerformerBase(const ProductCodes& product, const ActionFactory& factory,
                      std::weak_ptr<ModuleDependencies> dependencies);
  ActionPerformerBase(const ActionPerformerBase&) = delete;
  ActionPerformerBase& operator=(const ActionPerformerBase&) = delete;
  virtual ~ActionPerformerBase();

 protected:
  /// Registers a member function for a code. A later registration of the code replaces it.
  template <class Code, class Member, class Object>
  static void CreateActionRunner(HandlerMap& handlers, Code code, Member handler, Object* object) {
    handlers[code] = std::bind(handler, object, std::placeholders::_1);
  }

  ModuleAction GetAction(unsigned int code, const ActionParameters& parameters,
                         const HandlerMap& handlers);

  /// Runs the code once after the delay. Null: no parameters. They are copied before the return.
  void RunOneShotAction(unsigned int code, const std::chrono::seconds& delay,
                        ActionParameters* parameters);
  /// Runs the code every `period`, first after `delay`, unless it has a periodic action already.
  void CreatePeriodicAction(unsigned int code, AgentData& data, const std::chrono::seconds& period,
                            const std::chrono::seconds& delay);
  void ReplacePeriodicAction(unsigned int code, AgentData& data, const std::chrono::seconds& period,
                             const std::chrono::seconds& delay);
  /// The same from a configured schedule. Null: nothing happens.
  void ReplacePeriodicAction(unsigned int code, AgentData& data, const ScheduleInfo* schedule);

  /// Reports the state of the task that started the action. The message may be null.
  void SendStatusForProgrammedTask(ActionParameters& parameters,
                                   const TaskResponseInfo::ResponseStatusTypes& status,
                                   const char* message);
  /// Tells the host that a new file waits in the outbox.
  void RiseNewFileOnOutbox();

  const ProductCodes productCode;
  const int processKind;
  const ActionFactory actionFactory;
  const std::weak_ptr<IActionSystem> actionSystem;
  const std::weak_ptr<ICommunicationSystem> communications;
  const std::weak_ptr<IDataBase> dataBase;
  const std::weak_ptr<IIdentificationSystem> identification;
  std::atomic<bool> initialised{false};

 private:
  ActionResponse DefaultModuleAction(ActionParameters& parameters);
};

}  // namespace Norvik::Common
