#pragma once

#include <string>

namespace Norvik::KOB {

/// What `sharing -l` would print without the share: its "name:" at the start of a line, and all up
/// to the next one, is left out.
std::string WithoutShare(const std::string& listing, const std::string& name);

}  // namespace Norvik::KOB
