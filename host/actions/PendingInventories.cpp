#include "host/actions/PendingInventories.h"

#include "common/action/TaskOrigin.h"
#include "host/assembly/ModuleActionCodes.h"

namespace Norvik::Host {

using namespace Common;

namespace {

bool IsOfTask(const ActionParameters& parameters) {
  const auto origin = StatusOfTask(parameters, TaskResponseInfo::TASK_STARTED, "");
  return !origin.requestId.empty() || !origin.taskName.empty();
}

bool IsMachineInventory(unsigned int code) {
  return code == ACTION_TOTAL_INVENTORY || code == ACTION_INCREMENTAL_INVENTORY;
}

}  // namespace

bool PendingInventories::Contain(unsigned int code, const ActionParameters& parameters) const {
  if (!IsMachineInventory(code) || IsOfTask(parameters)) return false;
  const std::lock_guard<std::mutex> lock(mutex_);
  return pending_.count(code) != 0 || pending_.count(ACTION_TOTAL_INVENTORY) != 0;
}

PendingInventories::Entry PendingInventories::Add(unsigned int code) {
  if (!IsMachineInventory(code)) return nullptr;
  const std::lock_guard<std::mutex> lock(mutex_);
  ++pending_[code];
  return Entry(this, [code](PendingInventories* all) {
    const std::lock_guard<std::mutex> guard(all->mutex_);
    if (--all->pending_[code] == 0) all->pending_.erase(code);
  });
}

}  // namespace Norvik::Host
