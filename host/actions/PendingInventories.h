#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "common/action/ActionParameters.h"

namespace Norvik::Host {

/// The machine inventories that wait for a thread or run. The module refuses a second inventory at
/// the same time, so a request counts as the pending one if that contains it: a total inventory
/// contains every other. Safe on any thread.
class PendingInventories {
 public:
  using Entry = std::shared_ptr<void>;

  /// Whether an action asks for no more than a pending inventory. Never for a task of the server,
  /// which waits for its own states.
  bool Contain(unsigned int code, const Common::ActionParameters& parameters) const;
  /// Counts an action as pending until the entry is gone, which this object must outlive. Empty for
  /// any other action than a machine inventory.
  Entry Add(unsigned int code);

 private:
  mutable std::mutex mutex_;
  std::map<unsigned int, int> pending_;
};

}  // namespace Norvik::Host
