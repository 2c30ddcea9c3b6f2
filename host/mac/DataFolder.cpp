#include "host/data/DataFolder.h"

#include <sys/stat.h>
#include <unistd.h>

namespace Norvik::Host {

boost::filesystem::path DefaultDataFolder() {
  const char* const inFolder = "Library/Application Support/Norvik";
  if (::geteuid() != 0) return HomeFolder() / inFolder;
  // Earlier versions kept their data here, in the installation.
  const char* const former = "/opt/local/norvik/data";
  struct stat status {};
  if (::stat(former, &status) == 0 && S_ISDIR(status.st_mode)) return former;
  return boost::filesystem::path("/") / inFolder;
}

}  // namespace Norvik::Host
