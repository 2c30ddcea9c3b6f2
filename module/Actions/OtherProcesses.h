#pragma once

#include <memory>

#include "common/ipc/ICommunicationIPC.h"
#include "common/rest/ICommunicationSystem.h"

namespace Norvik::KOB {

/// The way to the other processes of the agent; null if the communications have gone or have none.
std::shared_ptr<Common::ICommunicationIPC> OtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications);

/// The same, but raises `std::bad_weak_ptr` in place of null.
std::shared_ptr<Common::ICommunicationIPC> RequireOtherProcesses(
    const std::weak_ptr<Common::ICommunicationSystem>& communications);

}  // namespace Norvik::KOB
