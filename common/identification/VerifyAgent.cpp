#include "common/identification/VerifyAgent.h"

#include <boost/filesystem/operations.hpp>

#include "platform/MachinePath.h"

namespace Norvik::Common {

bool VerifyAgent::Verify() {
  return boost::filesystem::exists(Platform::MachinePath("/opt/local/norvik/UninstallZebAgent.sh"));
}

}  // namespace Norvik::Common
