#include "common/identification/HostInfoProvider.h"

#include <unistd.h>

#include "common/text/Text.h"

namespace Norvik::Common {

std::string HostInfoProvider::GetHostName() {
  // The system's limit is 255 bytes or less; a name of just that length comes without a NUL.
  char name[257] = {};
  if (::gethostname(name, sizeof(name) - 1) != 0) return {};
  return EncodeUtf8Characters(name);
}

}  // namespace Norvik::Common
