#include "cli/view/SystemOpener.h"

namespace Norvik::Cli {

const char* const SYSTEM_OPENER = "open";

}  // namespace Norvik::Cli
