#include "platform/RecordedMachine.h"

#include <stdexcept>

namespace Norvik::Platform {

bool RecordedMachine::IsAvailable() { return false; }

RecordedMachine::RecordedMachine(const std::string& /*folder*/) {
  throw std::runtime_error("this build calls the system only");
}

RecordedMachine::~RecordedMachine() = default;

bool IsMachineRecorded() { return false; }

}  // namespace Norvik::Platform
