#pragma once

#include <memory>
#include <string>

#include "platform/compat/Registry.h"

namespace Norvik::Platform {

/// The registry of the recorded machine in force; an empty one without. Never null.
std::shared_ptr<const Registry> CurrentRegistry();

/// Path of a file of the recorded machine in force; empty without one.
std::string RecordingFile(const std::string& name);

}  // namespace Norvik::Platform
