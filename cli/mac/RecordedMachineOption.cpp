#include "cli/RecordedMachineOption.h"

namespace Norvik::Cli {

bool HasRecordedMachines() { return false; }

std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path&) { return nullptr; }

}  // namespace Norvik::Cli
