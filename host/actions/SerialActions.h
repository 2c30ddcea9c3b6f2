#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>

#include "host/actions/ActionSystem.h"

namespace Norvik::Host {

/// Runs messages of users as actions one at a time, in the order in which they are added, so that
/// they occupy at most one thread of their lane. Create it with `std::make_shared`. Safe on any
/// thread.
class SerialActions : public std::enable_shared_from_this<SerialActions> {
 public:
  explicit SerialActions(std::weak_ptr<ActionSystem> system);

  /// @param done called after the action has ended, even by an exception; not called if the action
  ///             never starts because the system has stopped
  void Add(unsigned int code, Common::ModuleAction action, std::function<void()> done);

 private:
  struct Item {
    unsigned int code;
    Common::ModuleAction action;
    std::function<void()> done;
  };

  void Start(Item item);
  void StartNext();

  const std::weak_ptr<ActionSystem> system_;
  std::mutex mutex_;
  bool busy_ = false;
  std::deque<Item> waiting_;
};

}  // namespace Norvik::Host
