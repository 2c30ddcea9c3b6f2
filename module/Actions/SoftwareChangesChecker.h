#pragma once

#include <atomic>
#include <future>
#include <memory>
#include <mutex>

#include "common/action/ActionPerformerBase.h"

namespace Norvik::KOB {

/// Interface of a watcher for changes of the installed software. This system has no such watcher:
/// changes arrive as actions from outside. Nothing calls the operations, and each of them throws
/// `std::runtime_error`. Registers no action.
class SoftwareChangesChecker final : public Common::ActionPerformerBase {
 public:
  SoftwareChangesChecker(std::weak_ptr<Common::ModuleDependencies> dependencies,
                         const Common::ActionFactory& factory, Common::HandlerMap& handlers);

  Common::ActionResponse StartRegistryCheck(Common::ActionParameters& parameters);
  void WaitForKeyChange();
  void CloseHandlers();
  void OpenUserKeys();
  void OpenSystemKeys();
  void CreateEventHandlers();
  void CreateLastEventHandler();

 private:
  std::atomic<bool> running_{false};
  Common::ActionFactory factory_;
  std::unique_ptr<std::promise<bool>> stop_;
  std::future<bool> stopped_;
  std::mutex lock_;
};

}  // namespace Norvik::KOB
