#pragma once

#include <string>

namespace Norvik::Forge {

/// The text of profiles.json: the models, releases, programs and places of a fleet.
std::string ProfilesJson();

}  // namespace Norvik::Forge
