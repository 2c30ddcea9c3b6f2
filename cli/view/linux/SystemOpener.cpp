#include "cli/view/SystemOpener.h"

namespace Norvik::Cli {

const char* const SYSTEM_OPENER = "xdg-open";

}  // namespace Norvik::Cli
