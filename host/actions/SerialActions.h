#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "common/action/IActionSystem.h"

namespace Norvik::Host {

/// Runs actions on an action system in the order in which they come, one at a time, so that they
/// keep no more than one of its threads busy. Make it by `std::make_shared`. Safe on any thread.
class SerialActions : public std::enable_shared_from_this<SerialActions> {
 public:
  explicit SerialActions(std::weak_ptr<Common::IActionSystem> system);

  /// @param done called when the action has ended, however it did; not if it never starts because
  ///             the system has stopped
  void Add(unsigned int code, Common::ModuleAction action, std::function<void()> done);

 private:
  struct Item {
    unsigned int code;
    Common::ModuleAction action;
    std::function<void()> done;
  };

  void Start(Item item);
  void StartNext();

  const std::weak_ptr<Common::IActionSystem> system_;
  std::mutex mutex_;
  bool busy_ = false;
  std::deque<Item> waiting_;
};

}  // namespace Norvik::Host
