#include <stdexcept>

#include "host/HostError.h"
#include "host/machine/Recording.h"
#include "platform/RecordedMachine.h"

namespace Norvik::Host {

bool HasRecordedMachines() { return true; }

std::shared_ptr<const void> UseRecordedMachine(const boost::filesystem::path& folder) {
  if (folder.empty()) return nullptr;
  try {
    return std::make_shared<const Platform::RecordedMachine>(folder.string());
  } catch (const std::runtime_error& error) {
    throw UsageError(std::string("--machine: ") + error.what());
  }
}

}  // namespace Norvik::Host
