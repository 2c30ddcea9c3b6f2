#pragma once

#include <memory>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::KOB {

/// The IPC connection to the other processes of the agent; null if the communications no longer
/// exist or do not offer one.
std::shared_ptr<Common::ICommunicationIPC> OtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications);

/// The same, but throws `std::bad_weak_ptr` instead of returning null.
std::shared_ptr<Common::ICommunicationIPC> RequireOtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications);

}  // namespace Norvik::KOB
