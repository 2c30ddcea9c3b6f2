#include "host/configuration/UsualExclusions.h"

namespace Norvik::Host {

const std::vector<UsualExclusion>& UsualExclusions() {
  static const std::vector<UsualExclusion> exclusions = {
      {"/dev", "a scan would list devices"},
      {"/proc", "a scan would list what the kernel generates for each process"},
      {"/run", "a scan would list files that are gone after the next start"},
      {"/sys", "a scan would list what the kernel generates for each device"},
  };
  return exclusions;
}

}  // namespace Norvik::Host
