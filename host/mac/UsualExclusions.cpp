#include "host/configuration/UsualExclusions.h"

namespace Norvik::Host {

const std::vector<UsualExclusion>& UsualExclusions() {
  static const std::vector<UsualExclusion> exclusions = {
      {"/System/Volumes/Data", "a scan would list its files twice"},
      {"/dev", "a scan would list devices"},
      {"/home", "a scan would mount what it finds there"},
      {"/net", "a scan would mount what it finds there"},
  };
  return exclusions;
}

}  // namespace Norvik::Host
