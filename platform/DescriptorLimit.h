#pragma once

#include <cstddef>

namespace Norvik::Platform {

/// Increases the number of descriptors that this process and its children may have open, as far as
/// the system allows. Never lowers it. Returns the number that is in force.
std::size_t RaiseDescriptorLimit(std::size_t wanted);

}  // namespace Norvik::Platform
