#include "module/Inventory/RunCommandsSection.h"

#include "common/log/Logger.h"

namespace Norvik::KOB {

void RunCommandsSection::GetInfo(std::list<RunCommandInfo>&) { NORVIK_WARNING("Not implemented"); }

}  // namespace Norvik::KOB
