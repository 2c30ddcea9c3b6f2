#pragma once

#include <optional>

#include "platform/Location.h"

namespace Norvik::Platform {

/// The position that `LocationService` returned last in this process; empty if it had none yet. For
/// the thread that asked for positions.
std::optional<LocationFix> LastFix();

}  // namespace Norvik::Platform
