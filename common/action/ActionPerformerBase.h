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

/// The handlers of a module by the code that they serve.
using HandlerMap = std::map<unsigned int, ActionHandler>;

/// Base of the classes that serve actions. Holds the services of the host as weak pointers, since
/// the host owns them: an operation throws `std::bad_weak_ptr` if the service that it needs is
/// gone, and passes on what that service throws. The members here may be called from several
/// threads; what a derived class adds, it has to protect itself.
class NORVIK_COMMON_API ActionPerformerBase {
 public:
  /// Copies what it needs of the dependencies. Throws `std::bad_weak_ptr` if they are gone.
  ActionPerformerBase(const ProductCodes& product, const ActionFactory& factory,
                      std::weak_ptr<ModuleDependencies> dependencies);
  ActionPerformerBase(const ActionPerformerBase&) = delete;
  ActionPerformerBase& operator=(const ActionPerformerBase&) = delete;
  virtual ~ActionPerformerBase();

 protected:
  /// Registers a member function of `object` as the handler of a code. A later registration of the
  /// same code replaces it. `object` must live as long as the map is used.
  template <class Code, class Member, class Object>
  static void CreateActionRunner(HandlerMap& handlers, Code code, Member handler, Object* object) {
    handlers[code] = std::bind(handler, object, std::placeholders::_1);
  }

  /// The action of a code, with a copy of the parameters. For a code without a handler: the default
  /// action, which has no name, logs a warning and returns a default response. The handler refers
  /// to this object.
  ModuleAction GetAction(unsigned int code, const ActionParameters& parameters,
                         const HandlerMap& handlers);

  /// Runs the action of a code once, on an action thread, after the delay. The parameters are
  /// copied during the call; null means none.
  void RunOneShotAction(unsigned int code, const std::chrono::seconds& delay,
                        ActionParameters* parameters);
  /// Runs the action of a code every `period`, the first time after `delay`. Does nothing if the
  /// code has a periodic action already. `data` keeps the state over restarts.
  void CreatePeriodicAction(unsigned int code, AgentData& data, const std::chrono::seconds& period,
                            const std::chrono::seconds& delay);
  /// The same, but replaces a periodic action that the code has already.
  void ReplacePeriodicAction(unsigned int code, AgentData& data, const std::chrono::seconds& period,
                             const std::chrono::seconds& delay);
  /// The same with the times of a configured schedule. Does nothing for null.
  void ReplacePeriodicAction(unsigned int code, AgentData& data, const ScheduleInfo* schedule);

  /// Reports a status of the task that started the action to the server: the task's names and times
  /// are taken from the parameters. An action that no task started has none of them, and the report
  /// is made all the same. The message is for people and may be null.
  void SendStatusForProgrammedTask(ActionParameters& parameters,
                                   const TaskResponseInfo::ResponseStatusTypes& status,
                                   const char* message);
  /// Notifies the host that a new file waits in the outbox.
  void RiseNewFileOnOutbox();

  // From the dependencies. `processKind` is 0 in the service, any other value in a user's process.
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
