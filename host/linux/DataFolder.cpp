#include <cstdlib>

#include "host/data/DataFolder.h"

namespace Norvik::Host {

boost::filesystem::path DefaultDataFolder() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  // The convention of this variable requires that a relative path is ignored.
  if (state && *state == '/') return boost::filesystem::path(state) / "norvik";
  return HomeFolder() / ".local" / "state" / "norvik";
}

}  // namespace Norvik::Host
