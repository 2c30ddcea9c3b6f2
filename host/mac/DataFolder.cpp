#include <unistd.h>

#include "host/data/DataFolder.h"

namespace Norvik::Host {

boost::filesystem::path DefaultDataFolder() {
  if (::geteuid() == 0) return "/opt/local/norvik/data";
  return HomeFolder() / "Library" / "Application Support" / "Norvik";
}

}  // namespace Norvik::Host
