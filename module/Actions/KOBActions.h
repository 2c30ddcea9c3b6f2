#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

#include "common/action/ActionPerformerBase.h"
#include "common/ipc/ICommunicationIPC.h"
#include "module/HeldConfiguration.h"

namespace Norvik::KOB {

/// Actions that are neither inventories nor remote administration: messages to users, reactions to
/// changes, pending tasks, the regular total inventory. The handlers may be called on any
/// thread. A second call of an action that is still running gives up at once; only the total
/// inventory is then tried again later.
class KOBActions final : public Common::ActionPerformerBase {
 public:
  /// Returns the time of day. Called on any thread.
  using TimeSource = std::function<std::chrono::system_clock::time_point()>;

  KOBActions(const std::weak_ptr<Common::ModuleDependencies>& dependencies,
             const Common::ActionFactory& factory, Common::HandlerMap& handlers,
             TimeSource now = std::chrono::system_clock::now);

  /// Starts an inventory if the configuration asks for one on logon. Deliberately has no action
  /// code, so no request reaches it.
  Common::ActionResponse OnLogon(Common::ActionParameters& parameters);

 private:
  Common::ActionResponse OnHardwareChangesDetected(Common::ActionParameters& parameters);
  Common::ActionResponse OnSoftwareChangeDetected(Common::ActionParameters& parameters);
  Common::ActionResponse OnShowMessage(Common::ActionParameters& parameters);
  Common::ActionResponse KOBGetPendingTasks(Common::ActionParameters& parameters);
  Common::ActionResponse OnUpdateConfiguration(Common::ActionParameters& parameters);
  Common::ActionResponse OnScheduleTotalInventory(Common::ActionParameters& parameters);

  void HandleChangeDetection(Common::ActionParameters& parameters, std::mutex& lock,
                             const std::string& kind);
  void ReprogramInventory(std::int64_t last, std::int64_t period);
  Common::ActionResponse FailMessage(Common::ActionParameters& parameters, const char* reason);
  void SendMessageToSession(Common::ICommunicationIPC& ipc, unsigned long long session,
                            const Common::IPCSessionData& data, const std::string& text);

  const TimeSource now_;
  HeldConfiguration configuration_;
  std::mutex hardwareLock_;
  std::mutex messageLock_;
  std::mutex pendingTasksLock_;
  std::mutex softwareLock_;
  std::mutex totalInventoryLock_;
};

}  // namespace Norvik::KOB
