#include "module/Actions/OtherProcesses.h"

namespace Norvik::KOB {

std::shared_ptr<Common::ICommunicationIPC> OtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications) {
  return std::dynamic_pointer_cast<Common::ICommunicationIPC>(communications.lock());
}

std::shared_ptr<Common::ICommunicationIPC> RequireOtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications) {
  auto processes = OtherProcesses(communications);
  if (!processes) throw std::bad_weak_ptr();
  return processes;
}

}  // namespace Norvik::KOB
