#pragma once

#include <string>

namespace Norvik::Forge {

/// The text of profiles.json: the models, releases, programs and places of a fleet.
std::string ProfilesJson();
/// The text of tasks.json: what simulated agents answer to which task.
std::string TasksJson();

}  // namespace Norvik::Forge
