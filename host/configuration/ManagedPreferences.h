#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace Norvik::Host {

/// Where macOS stores the preferences that configuration profiles force on this agent, for the
/// whole machine. On other systems only a recorded machine has such a file.
inline constexpr char MANAGED_PREFERENCES[] = "/Library/Managed Preferences/com.norvik.agent.plist";

/// The managed preferences as JSON: dictionaries are objects. A date or a number with a
/// fraction is null, and data are binary: no key takes these. Keys of the profile itself
/// ("PayloadUUID") are left out. An empty object without managed preferences. Throws
/// `std::runtime_error`, with the file's name in its text, if the file cannot be read or is no
/// property list.
nlohmann::json ReadManagedPreferences();

/// A text that differs whenever the managed preferences do, or the reason why they cannot be read.
/// Throws only `std::bad_alloc`.
std::string StateOfManagedPreferences();

}  // namespace Norvik::Host
