#include "host/machine/Recording.h"

namespace Norvik::Host {

bool HasRecordedMachines() { return false; }

std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path&) { return nullptr; }

}  // namespace Norvik::Host
