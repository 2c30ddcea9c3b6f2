#include <cstdlib>

#include "host/data/DataFolder.h"

namespace Norvik::Host {

boost::filesystem::path DefaultDataFolder() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  // A relative folder there is to be ignored, by the convention of that variable.
  if (state && *state == '/') return boost::filesystem::path(state) / "norvik";
  return HomeFolder() / ".local" / "state" / "norvik";
}

}  // namespace Norvik::Host
